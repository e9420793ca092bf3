// Finds and cuts the comments of a text.
#ifndef KALVISTA_SDK_COMMENTS_H
#define KALVISTA_SDK_COMMENTS_H

#include <cstdint>
#include <optional>

namespace ardo {

// Cuts the comments out of a text, nested ones with the one that holds them, and terminates what is
// left. Returns its length; nothing, with the text untouched, when the comments do not balance.
std::optional<std::int32_t> cutComments(char* text, std::int32_t length);

}  // namespace ardo

#endif  // KALVISTA_SDK_COMMENTS_H
