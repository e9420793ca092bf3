// Room for the paths that the path builder forms.
#ifndef KALVISTA_SDK_PATH_BUFFER_H
#define KALVISTA_SDK_PATH_BUFFER_H

#include <array>
#include <cstddef>

namespace ardo {

// Most characters of a directory, a file name or an extension.
constexpr short kPathLimit = 260;
constexpr std::size_t kPieceSize = kPathLimit;

// A working directory of up to 520 characters with its folder, or a directory of 260, then a
// separator, a name and an extension of 260 each, and the terminator: the pieces are bounded one by
// one, so that this much is the most that can come together.
using PathBuffer = std::array<char, 2 * kPieceSize + sizeof("/Imager") + 2 * kPieceSize + 2>;

}  // namespace ardo

#endif  // KALVISTA_SDK_PATH_BUFFER_H
