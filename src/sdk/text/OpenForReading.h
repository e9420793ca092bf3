// Opens files whose names come from outside.
#ifndef KALVISTA_SDK_OPEN_FOR_READING_H
#define KALVISTA_SDK_OPEN_FOR_READING_H

namespace ardo {

// A descriptor for reading that child processes do not inherit; -1 when the file cannot be opened.
// Never waits for the other end of a named pipe, but for a file that another process holds a lease
// on until it has given it back.
int openForReading(const char* path);

}  // namespace ardo

#endif  // KALVISTA_SDK_OPEN_FOR_READING_H
