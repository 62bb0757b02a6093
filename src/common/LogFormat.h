#ifndef TAVCLIENT_COMMON_LOGFORMAT_H
#define TAVCLIENT_COMMON_LOGFORMAT_H

#include <cstdarg>
#include <string>

// The logger's own reading of a printf-like format. A '%' makes the next 'd', 'u', 'c' (an
// int, printed as a signed decimal), 'f' (a double, six decimals) or 's' (a C string) a
// conversion; a further '%' prints nothing, and any other character is printed as it is and
// leaves the conversion pending, so "%5d" of 42 gives "542" and "%ld" gives "l42".
// A null format reads as empty and a null string prints as "(null)".
std::string FormatLogText(const char* format, va_list arguments);

#endif
