/// @file
/// The version of the library whose headers are compiled against.
///
/// The build reads its version from this file, so that it stands in one place only.
#ifndef KALVISTA_VERSION_H
#define KALVISTA_VERSION_H

/// Changes when a program built against an older library may stop working.
#define KALVISTA_VERSION_MAJOR 1
/// Changes when something is added that older libraries do not have.
#define KALVISTA_VERSION_MINOR 0
/// Changes with corrections only.
#define KALVISTA_VERSION_PATCH 0

#endif  // KALVISTA_VERSION_H
