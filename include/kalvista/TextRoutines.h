/// @file
/// One set of names for narrow and wide text routines.
///
/// Each routine forwards to one routine of the C library and adds no check of its own: pointers
/// must not be null, and destinations must have the room that the forwarded routine needs.
/// All are safe from **any thread** as far as the forwarded routine is, except the wide
/// brivex::W2C().
#ifndef KALVISTA_TEXT_ROUTINES_H
#define KALVISTA_TEXT_ROUTINES_H

#include <kalvista/export.h>

/// Compares two texts.
/// @param a zero-terminated text
/// @param b zero-terminated text
/// @return below, equal to or above 0 as `a` sorts before, equal to or after `b`
KALVISTA_API int tstrcmp(const char* a, const char* b);
/// @copydoc tstrcmp(const char*, const char*)
KALVISTA_API int tstrcmp(const wchar_t* a, const wchar_t* b);

/// Copies at most `size` bytes, as `strncpy` does.
///
/// A shorter source is padded with zero bytes up to `size`; a source of `size` bytes or more leaves
/// the destination **without a terminator**.
/// @param dst destination with room for `size` bytes
/// @param size number of bytes written
/// @param src zero-terminated text
/// @return `dst`
KALVISTA_API char* tstrcpy(char* dst, unsigned long size, const char* src);
/// Copies the whole text, as `wcscpy` does.
/// @param dst destination with room for all of `src` and its terminator
/// @param size ignored: callers of the wide form rely on the whole text
/// @param src zero-terminated text
/// @return `dst`
KALVISTA_API wchar_t* tstrcpy(wchar_t* dst, unsigned long size, const wchar_t* src);

/// Appends at most `size` bytes and a terminator, as `strncat` does.
/// @param dst zero-terminated text with room for what is appended and a terminator
/// @param size most bytes taken from `src`; **not** the capacity of `dst`
/// @param src zero-terminated text
/// @return `dst`
KALVISTA_API char* tstrcat(char* dst, unsigned long size, const char* src);
/// Appends the whole text, as `wcscat` does.
/// @param dst zero-terminated text with room for all of `src`
/// @param size ignored: callers of the wide form rely on the whole text
/// @param src zero-terminated text
/// @return `dst`
KALVISTA_API wchar_t* tstrcat(wchar_t* dst, unsigned long size, const wchar_t* src);

/// Counts the characters before the terminator.
/// @param s zero-terminated text
/// @return length in characters
KALVISTA_API unsigned long tstrlen(const char* s);
/// @copydoc tstrlen(const char*)
KALVISTA_API unsigned long tstrlen(const wchar_t* s);

/// Formats as `vsnprintf` does.
/// @param buf destination of `size` bytes; terminated when `size` is above 0
/// @param size capacity in bytes, terminator included
/// @param fmt format of the `printf` family
/// @return length in bytes that the whole output has, whether or not it fitted; negative on an
///         encoding failure
KALVISTA_API int tsnprintf(char* buf, unsigned long size, const char* fmt, ...)
    __attribute__((format(printf, 3, 4)));
/// Formats as `vswprintf` does.
/// @param buf destination of `size` wide characters
/// @param size capacity in wide characters, terminator included
/// @param fmt format of the `wprintf` family
/// @return length in wide characters; -1 when the output did not fit
KALVISTA_API int tsnprintf(wchar_t* buf, unsigned long size, const wchar_t* fmt, ...);

/// Converts to lower case in place, by the current locale.
/// @param s zero-terminated text, changed
/// @return `s`
KALVISTA_API char* tstrlwr(char* s);
/// @copydoc tstrlwr(char*)
KALVISTA_API wchar_t* tstrlwr(wchar_t* s);

/// Converts to upper case in place, by the current locale.
/// @param s zero-terminated text, changed
/// @return `s`
KALVISTA_API char* tstrupr(char* s);
/// @copydoc tstrupr(char*)
KALVISTA_API wchar_t* tstrupr(wchar_t* s);

/// Finds the first occurrence of a text in another.
/// @param hay zero-terminated text that is searched
/// @param needle zero-terminated text that is looked for
/// @return pointer into `hay`; null when `needle` does not occur
KALVISTA_API char* tstrstr(char* hay, char* needle);
/// @copydoc tstrstr(char*, char*)
KALVISTA_API wchar_t* tstrstr(wchar_t* hay, wchar_t* needle);

/// Reads one value by a format of the `scanf` family.
/// @param str zero-terminated text
/// @param fmt format with one conversion that fits `out`
/// @param out receives the value; untouched when nothing was converted
/// @return number of values converted (0 or 1); `EOF` when the text ended before the conversion
KALVISTA_API int tscanf(const char* str, const char* fmt, int* out);
/// @copydoc tscanf(const char*, const char*, int*)
KALVISTA_API int tscanf(const char* str, const char* fmt, long* out);
/// @copydoc tscanf(const char*, const char*, int*)
KALVISTA_API int tscanf(const char* str, const char* fmt, float* out);
/// @copydoc tscanf(const char*, const char*, int*)
KALVISTA_API int tscanf(const wchar_t* str, const wchar_t* fmt, int* out);
/// @copydoc tscanf(const char*, const char*, int*)
KALVISTA_API int tscanf(const wchar_t* str, const wchar_t* fmt, long* out);
/// @copydoc tscanf(const char*, const char*, int*)
KALVISTA_API int tscanf(const wchar_t* str, const wchar_t* fmt, float* out);

namespace ardo {

/// Reads an integer as "%i": decimal, hexadecimal after "0x", **octal after a leading zero** ("010"
/// is 8, as the XML files rely on).
/// @param str zero-terminated text
/// @param out receives the value; untouched when nothing was converted
/// @return as tscanf()
KALVISTA_API int _tscanfi(const char* str, int* out);
/// Reads a decimal integer as "%ld".
/// @param str zero-terminated text
/// @param out receives the value; untouched when nothing was converted
/// @return as tscanf()
KALVISTA_API int _tscanfld(const char* str, long* out);
/// Reads a floating-point number as "%f", by the current numeric locale.
/// @param str zero-terminated text
/// @param out receives the value; untouched when nothing was converted
/// @return as tscanf()
KALVISTA_API int _tscanff(const char* str, float* out);

}  // namespace ardo

namespace brivex {

/// Hands a narrow text through.
/// @param s text
/// @return `s` itself
KALVISTA_API const char* W2C(const char* s);
/// Converts a wide text into the current locale's multibyte form.
///
/// A character that has no multibyte form ends the conversion: what stood before it is converted,
/// what follows it in the buffer is what an earlier call left there.
/// Thread context: **one thread at a time**, since all calls share one buffer.
/// @param s zero-terminated wide text
/// @return at most 1023 bytes and a terminator in one buffer of 1024 bytes that the library owns;
///         each call overwrites the text of the call before
KALVISTA_API const char* W2C(const wchar_t* s);

}  // namespace brivex

#endif  // KALVISTA_TEXT_ROUTINES_H
