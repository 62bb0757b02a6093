#ifndef TAVCLIENT_COMMON_LOGFORMAT_H
#define TAVCLIENT_COMMON_LOGFORMAT_H

#include <cstdarg>
#include <string>

// The logger's own reading of a printf-like format. '%' starts a conversion, and the
// conversion is the next 'd', 'u', 'c' (an int, printed as a signed decimal), 'f' (a double,
// six decimals) or 's' (a C string); every other character, a second '%', flags, widths and
// length modifiers among them, is printed as it is ("%%" nothing), so "%5d" of 42 gives "542".
// A null format reads as empty and a null string prints as "(null)".
std::string FormatLogText(const char* format, va_list arguments);

#endif
