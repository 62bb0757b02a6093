#include "model/TextValue.h"

#include <charconv>
#include <cmath>
#include <utility>

namespace tavsim {

namespace {

// Deep enough for a list of poses; guards the recursion against hostile input.
constexpr int kMaxDepth = 8;

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && IsBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

// The whole text (blanks around it and a leading '+' allowed) as one number of type T.
template <typename T>
std::optional<T> ParseWhole(std::string_view text) {
  text = Trim(text);
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
  }
  T value{};
  const char* end = text.data() + text.size();
  auto [stop, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || stop != end) {
    return std::nullopt;
  }
  return value;
}

class Reader {
public:
  explicit Reader(std::string_view source) : text(source) {}

  std::optional<TextValue> Document() {
    auto value = _parseValue(0);
    _skipBlanks();
    if (!value || pos != text.size()) {
      return std::nullopt;
    }
    return value;
  }

private:
  std::optional<TextValue> _parseValue(int depth) {
    _skipBlanks();
    if (pos >= text.size() || depth > kMaxDepth) {
      return std::nullopt;
    }
    char c = text[pos];
    if (c == '[') {
      return _parseList(depth);
    }
    if (c == '{') {
      return _parseObject(depth);
    }
    if (c == '"') {
      auto content = _parseString();
      if (!content) {
        return std::nullopt;
      }
      TextValue value;
      value.kind = TextValue::Kind::String;
      value.text = std::move(*content);
      return value;
    }
    return _parseNumber();
  }

  std::optional<TextValue> _parseList(int depth) {
    TextValue list;
    list.kind = TextValue::Kind::List;
    ++pos;
    if (_consume(']')) {
      return list;
    }
    do {
      auto item = _parseValue(depth + 1);
      if (!item) {
        return std::nullopt;
      }
      list.items.push_back(std::move(*item));
    } while (_consume(','));
    return _consume(']') ? std::optional<TextValue>(std::move(list)) : std::nullopt;
  }

  std::optional<TextValue> _parseObject(int depth) {
    TextValue object;
    object.kind = TextValue::Kind::Object;
    ++pos;
    if (_consume('}')) {
      return object;
    }
    do {
      _skipBlanks();
      if (pos >= text.size() || text[pos] != '"') {
        return std::nullopt;
      }
      auto key = _parseString();
      if (!key || !_consume(':')) {
        return std::nullopt;
      }
      auto item = _parseValue(depth + 1);
      if (!item) {
        return std::nullopt;
      }
      object.keys.push_back(std::move(*key));
      object.items.push_back(std::move(*item));
    } while (_consume(','));
    return _consume('}') ? std::optional<TextValue>(std::move(object)) : std::nullopt;
  }

  // At the opening quote.
  std::optional<std::string> _parseString() {
    std::string content;
    for (++pos; pos < text.size(); ++pos) {
      char c = text[pos];
      if (c == '"') {
        ++pos;
        return content;
      }
      if (c == '\\') {
        if (++pos >= text.size() || (text[pos] != '"' && text[pos] != '\\')) {
          return std::nullopt;
        }
        c = text[pos];
      }
      content.push_back(c);
    }
    return std::nullopt;
  }

  std::optional<TextValue> _parseNumber() {
    std::size_t start = pos;
    while (pos < text.size() && text[pos] != ',' && text[pos] != ']' && text[pos] != '}' &&
           !IsBlank(text[pos])) {
      ++pos;
    }
    std::string_view written = text.substr(start, pos - start);
    auto number = ParseReal(written);
    if (!number) {
      return std::nullopt;
    }
    TextValue value;
    value.number = *number;
    value.text = std::string(written);
    return value;
  }

  bool _consume(char expected) {
    _skipBlanks();
    if (pos < text.size() && text[pos] == expected) {
      ++pos;
      return true;
    }
    return false;
  }

  void _skipBlanks() {
    while (pos < text.size() && IsBlank(text[pos])) {
      ++pos;
    }
  }

  std::string_view text;
  std::size_t pos = 0;
};

}  // namespace

std::optional<TextValue> TextValue::Parse(std::string_view text) { return Reader(text).Document(); }

std::optional<double> ParseReal(std::string_view text) {
  auto value = ParseWhole<double>(text);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<int> ParseInteger(std::string_view text) { return ParseWhole<int>(text); }

}  // namespace tavsim
