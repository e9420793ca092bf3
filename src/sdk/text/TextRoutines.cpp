#include <kalvista/TextRoutines.h>

#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <cwctype>

int tstrcmp(const char* a, const char* b) { return std::strcmp(a, b); }
int tstrcmp(const wchar_t* a, const wchar_t* b) { return std::wcscmp(a, b); }

char* tstrcpy(char* dst, unsigned long size, const char* src) {
  return std::strncpy(dst, src, size);
}
wchar_t* tstrcpy(wchar_t* dst, unsigned long /*size*/, const wchar_t* src) {
  return std::wcscpy(dst, src);
}

char* tstrcat(char* dst, unsigned long size, const char* src) {
  return std::strncat(dst, src, size);
}
wchar_t* tstrcat(wchar_t* dst, unsigned long /*size*/, const wchar_t* src) {
  return std::wcscat(dst, src);
}

unsigned long tstrlen(const char* s) { return std::strlen(s); }
unsigned long tstrlen(const wchar_t* s) { return std::wcslen(s); }

int tsnprintf(char* buf, unsigned long size, const char* fmt, ...) {
  va_list arguments;
  va_start(arguments, fmt);
  const int length = std::vsnprintf(buf, size, fmt, arguments);
  va_end(arguments);
  return length;
}
int tsnprintf(wchar_t* buf, unsigned long size, const wchar_t* fmt, ...) {
  va_list arguments;
  va_start(arguments, fmt);
  const int length = std::vswprintf(buf, size, fmt, arguments);
  va_end(arguments);
  return length;
}

namespace {

template <typename Character, typename Convert>
Character* convertInPlace(Character* text, Convert convert) {
  for (Character* at = text; (*at = static_cast<Character>(convert(*at))) != 0; ++at) {
  }
  return text;
}

// The C library's tables take the negative values of plain bytes, so that a locale decides on them.
int toLower(signed char byte) { return std::tolower(byte); }
int toUpper(signed char byte) { return std::toupper(byte); }

std::wint_t toLowerWide(wchar_t character) {
  return std::towlower(static_cast<std::wint_t>(character));
}
std::wint_t toUpperWide(wchar_t character) {
  return std::towupper(static_cast<std::wint_t>(character));
}

}  // namespace

char* tstrlwr(char* s) { return convertInPlace(s, toLower); }
wchar_t* tstrlwr(wchar_t* s) { return convertInPlace(s, toLowerWide); }
char* tstrupr(char* s) { return convertInPlace(s, toUpper); }
wchar_t* tstrupr(wchar_t* s) { return convertInPlace(s, toUpperWide); }

char* tstrstr(char* hay, char* needle) { return std::strstr(hay, needle); }
wchar_t* tstrstr(wchar_t* hay, wchar_t* needle) { return std::wcsstr(hay, needle); }

int tscanf(const char* str, const char* fmt, int* out) { return std::sscanf(str, fmt, out); }
int tscanf(const char* str, const char* fmt, long* out) { return std::sscanf(str, fmt, out); }
int tscanf(const char* str, const char* fmt, float* out) { return std::sscanf(str, fmt, out); }
int tscanf(const wchar_t* str, const wchar_t* fmt, int* out) { return std::swscanf(str, fmt, out); }
int tscanf(const wchar_t* str, const wchar_t* fmt, long* out) {
  return std::swscanf(str, fmt, out);
}
int tscanf(const wchar_t* str, const wchar_t* fmt, float* out) {
  return std::swscanf(str, fmt, out);
}

namespace ardo {

int _tscanfi(const char* str, int* out) { return tscanf(str, "%i", out); }
int _tscanfld(const char* str, long* out) { return tscanf(str, "%ld", out); }
int _tscanff(const char* str, float* out) { return tscanf(str, "%f", out); }

}  // namespace ardo

namespace brivex {

const char* W2C(const char* s) { return s; }

const char* W2C(const wchar_t* s) {
  static char converted[1024];  // of which the last stays zero
  std::wcstombs(converted, s, sizeof(converted) - 1);
  return converted;
}

}  // namespace brivex
