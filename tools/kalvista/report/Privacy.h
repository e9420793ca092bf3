// What a page that goes out by mail does not need to tell: who wrote it.
#ifndef KALVISTA_TOOL_PRIVACY_H
#define KALVISTA_TOOL_PRIVACY_H

#include "answer/Output.h"
#include "machine/System.h"

namespace tool {

// In all texts of the document: home directories become "~", and so do those of other users below
// /home; a user's name becomes "USER" where it is a part of a path.
void leaveOutUser(const User& user, Json* document);

// The same, and the name wherever it stands as a word: for texts that users write themselves.
void leaveOutUserInProse(const User& user, Json* document);

}  // namespace tool

#endif  // KALVISTA_TOOL_PRIVACY_H
