#include "common/LogFormat.h"

std::string FormatLogText(const char* format, va_list arguments) {
  std::string text;
  if (format == nullptr) {
    return text;
  }
  bool converting = false;
  for (const char* c = format; *c != '\0'; ++c) {
    if (*c == '%') {
      converting = true;
      continue;
    }
    if (!converting) {
      text += *c;
      continue;
    }
    switch (*c) {
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
