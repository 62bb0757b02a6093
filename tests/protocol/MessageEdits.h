#ifndef TAVCLIENT_TESTS_PROTOCOL_MESSAGEEDITS_H
#define TAVCLIENT_TESTS_PROTOCOL_MESSAGEEDITS_H

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <string>

// Damaged variants of a good message: one element, found by name and occurrence (from 0) in
// its long or short form, renamed or removed.
namespace message_edits {

struct Span {
  std::size_t begin, end, nameEnd, closeNameEnd;  // closeNameEnd is npos for "<name />"
};

inline Span locate(const std::string& text, const std::string& name, int occurrence) {
  std::size_t begin = std::string::npos;
  for (std::size_t from = 0; occurrence >= 0; --occurrence, from = begin + 1) {
    begin = std::min(text.find("<" + name + ">", from), text.find("<" + name + " />", from));
    if (begin == std::string::npos) {
      throw std::logic_error("no element " + name + " in " + text);
    }
  }
  const std::size_t nameEnd = begin + 1 + name.size();
  if (text[nameEnd] == ' ') {
    return {begin, nameEnd + 3, nameEnd, std::string::npos};
  }
  const std::size_t closeNameEnd = text.find("</" + name + ">", nameEnd) + 2 + name.size();
  return {begin, closeNameEnd + 1, nameEnd, closeNameEnd};
}

inline std::string renamed(std::string text, const std::string& name, int occurrence) {
  const Span span = locate(text, name, occurrence);
  if (span.closeNameEnd != std::string::npos) {
    text.insert(span.closeNameEnd, "x");
  }
  return text.insert(span.nameEnd, "x");
}

inline std::string without(std::string text, const std::string& name, int occurrence) {
  const Span span = locate(text, name, occurrence);
  return text.erase(span.begin, span.end - span.begin);
}

}  // namespace message_edits

#endif
