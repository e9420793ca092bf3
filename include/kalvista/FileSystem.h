/// @file
/// Folder helpers.
#ifndef KALVISTA_FILE_SYSTEM_H
#define KALVISTA_FILE_SYSTEM_H

#include <kalvista/export.h>

namespace ardo {

/// Makes one folder with permissions 0777, less the process's mask. Thread context: **any thread**.
/// @param path zero-terminated path; its parent must exist
/// @return 0; -1 when the folder was not made (`errno` tells why: it exists, its parent is missing,
///         not permitted, `path` is null)
KALVISTA_API int mkDir(const char* path);

/// Reads the working directory. Thread context: **any thread**.
/// @param buf receives the zero-terminated path; needs room for **2 x `size` + 1** bytes: callers
///            pass half of the room that they have in mind
/// @param size half of the room, in bytes, above 0
/// @return `buf`; null when the path does not fit or the working directory is gone, and when `buf`
///         is null or `size` below 1 (`errno` tells why: `ERANGE`, `ENOENT`, `EINVAL`)
KALVISTA_API char* getFolderPath(char* buf, short size);

}  // namespace ardo

#endif  // KALVISTA_FILE_SYSTEM_H
