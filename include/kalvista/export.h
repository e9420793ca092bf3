/// @file
/// Marks the classes and functions that applications link against.
#ifndef KALVISTA_EXPORT_H
#define KALVISTA_EXPORT_H

/// Makes a class or function visible outside the shared library; everything else stays hidden.
#define KALVISTA_API __attribute__((visibility("default")))

#endif  // KALVISTA_EXPORT_H
