#include "common/LogFormat.h"

#include <cstring>

// Runs of plain characters are appended whole: most formats are plain text, and this runs on
// the thread of whoever logs.
std::string FormatLogText(const char* format, va_list arguments) {
  std::string text;
  if (format == nullptr) {
    return text;
  }
  bool converting = false;
  for (const char* c = format; *c != '\0'; ++c) {
    if (!converting) {
      const char* percent = std::strchr(c, '%');
      if (percent == nullptr) {
        text.append(c);
        break;
      }
      text.append(c, percent);
      c = percent;
      converting = true;
      continue;
    }
    switch (*c) {
      case '%':
        break;
      case 'd':
      case 'u':
      case 'c':
        text += std::to_string(va_arg(arguments, int));
        converting = false;
        break;
      case 'f':
        text += std::to_string(va_arg(arguments, double));
        converting = false;
        break;
      case 's': {
        const char* argument = va_arg(arguments, const char*);
        text += argument != nullptr ? argument : "(null)";
        converting = false;
        break;
      }
      default:
        text += *c;
        break;
    }
  }
  return text;
}
