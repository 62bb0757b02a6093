#include "model/TextValue.h"

#include <charconv>
#include <cmath>
#include <utility>

namespace tavsim {

namespace {

// Deep enough for a list of poses; guards the recursion against hostile input.
constexpr int kMaxDepth = 8;

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

std::string_view trim(std::string_view text) {
  while (!text.empty() && isBlank(text.front())) {
    text.remove_prefix(1);
  }
  while (!text.empty() && isBlank(text.back())) {
    text.remove_suffix(1);
  }
  return text;
}

// The whole text (blanks around it and a leading '+' allowed) as one number of type T.
template <typename T>
std::optional<T> parseWhole(std::string_view text) {
  text = trim(text);
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
  explicit Reader(std::string_view text) : text_(text) {}

  std::optional<TextValue> document() {
    auto value = parseValue(0);
    skipBlanks();
    if (!value || pos_ != text_.size()) {
      return std::nullopt;
    }
    return value;
  }

private:
  std::optional<TextValue> parseValue(int depth) {
    skipBlanks();
    if (pos_ >= text_.size() || depth > kMaxDepth) {
      return std::nullopt;
    }
    char c = text_[pos_];
    if (c == '[') {
      return parseList(depth);
    }
    if (c == '{') {
      return parseObject(depth);
    }
    if (c == '"') {
      auto content = parseString();
      if (!content) {
        return std::nullopt;
      }
      TextValue value;
      value.kind = TextValue::Kind::String;
      value.text = std::move(*content);
      return value;
    }
    return parseNumber();
  }

  std::optional<TextValue> parseList(int depth) {
    TextValue list;
    list.kind = TextValue::Kind::List;
    ++pos_;
    if (consume(']')) {
      return list;
    }
    do {
      auto item = parseValue(depth + 1);
      if (!item) {
        return std::nullopt;
      }
      list.items.push_back(std::move(*item));
    } while (consume(','));
    return consume(']') ? std::optional<TextValue>(std::move(list)) : std::nullopt;
  }

  std::optional<TextValue> parseObject(int depth) {
    TextValue object;
    object.kind = TextValue::Kind::Object;
    ++pos_;
    if (consume('}')) {
      return object;
    }
    do {
      skipBlanks();
      if (pos_ >= text_.size() || text_[pos_] != '"') {
        return std::nullopt;
      }
      auto key = parseString();
      if (!key || !consume(':')) {
        return std::nullopt;
      }
      auto item = parseValue(depth + 1);
      if (!item) {
        return std::nullopt;
      }
      object.keys.push_back(std::move(*key));
      object.items.push_back(std::move(*item));
    } while (consume(','));
    return consume('}') ? std::optional<TextValue>(std::move(object)) : std::nullopt;
  }

  // At the opening quote.
  std::optional<std::string> parseString() {
    std::string content;
    for (++pos_; pos_ < text_.size(); ++pos_) {
      char c = text_[pos_];
      if (c == '"') {
        ++pos_;
        return content;
      }
      if (c == '\\') {
        if (++pos_ >= text_.size() || (text_[pos_] != '"' && text_[pos_] != '\\')) {
          return std::nullopt;
        }
        c = text_[pos_];
      }
      content.push_back(c);
    }
    return std::nullopt;
  }

  std::optional<TextValue> parseNumber() {
    std::size_t start = pos_;
    while (pos_ < text_.size() && text_[pos_] != ',' && text_[pos_] != ']' &&
           text_[pos_] != '}' && !isBlank(text_[pos_])) {
      ++pos_;
    }
    std::string_view written = text_.substr(start, pos_ - start);
    auto number = parseReal(written);
    if (!number) {
      return std::nullopt;
    }
    TextValue value;
    value.number = *number;
    value.text = std::string(written);
    return value;
  }

  bool consume(char expected) {
    skipBlanks();
    if (pos_ < text_.size() && text_[pos_] == expected) {
      ++pos_;
      return true;
    }
    return false;
  }

  void skipBlanks() {
    while (pos_ < text_.size() && isBlank(text_[pos_])) {
      ++pos_;
    }
  }

  std::string_view text_;
  std::size_t pos_ = 0;
};

}  // namespace

std::optional<TextValue> TextValue::parse(std::string_view text) {
  return Reader(text).document();
}

std::optional<double> parseReal(std::string_view text) {
  auto value = parseWhole<double>(text);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<int> parseInteger(std::string_view text) {
  return parseWhole<int>(text);
}

}  // namespace tavsim
