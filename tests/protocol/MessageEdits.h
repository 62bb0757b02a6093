#ifndef TAVCLIENT_TESTS_PROTOCOL_MESSAGEEDITS_H
#define TAVCLIENT_TESTS_PROTOCOL_MESSAGEEDITS_H

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>

// Edits of one element in a compact message text, to build damaged variants of good messages.
namespace message_edits {

struct Span {
  std::size_t begin;
  std::size_t nameEnd;  // just behind the name in the opening tag
  std::size_t closeNameEnd;  // just behind the name in the closing tag, or npos for "<n />"
  std::size_t end;
};

// The occurrence-th element of that name (counting from 0), long or short form.
inline Span locate(const std::string& text, const std::string& name, int occurrence) {
  std::size_t from = 0;
  std::size_t begin = std::string::npos;
  for (int seen = 0; seen <= occurrence; ++seen) {
    begin = std::min(text.find("<" + name + ">", from), text.find("<" + name + " />", from));
    if (begin == std::string::npos) {
      throw std::logic_error("no element " + name + " in " + text);
    }
    from = begin + 1;
  }
  const std::size_t nameEnd = begin + 1 + name.size();
  if (text[nameEnd] == ' ') {
    return {begin, nameEnd, std::string::npos, nameEnd + 3};
  }
  const std::size_t close = text.find("</" + name + ">", nameEnd);
  return {begin, nameEnd, close + 2 + name.size(), close + 3 + name.size()};
}

inline std::string renamed(std::string text, const std::string& name, int occurrence = 0) {
  const Span span = locate(text, name, occurrence);
  if (span.closeNameEnd != std::string::npos) {
    text.insert(span.closeNameEnd, "x");
  }
  return text.insert(span.nameEnd, "x");
}

inline std::string without(std::string text, const std::string& name, int occurrence = 0) {
  const Span span = locate(text, name, occurrence);
  return text.erase(span.begin, span.end - span.begin);
}

}  // namespace message_edits

#endif
