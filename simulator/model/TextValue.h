#ifndef TAVSIM_MODEL_TEXTVALUE_H
#define TAVSIM_MODEL_TEXTVALUE_H

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavsim {

// A parameter text read as a small JSON-like value: numbers, double-quoted strings (only \"
// and \\ escaped), lists in [] and objects in {} with string keys. The client's forms are
// `["1","2"]`, `[10.000000,-0.500000]`, `{"1": 0,"2": 1}`, `[0.1,0.2,0.3,[0.0,1.57,0.0]]`.
struct TextValue {
  enum class Kind { Number, String, List, Object };

  Kind kind = Kind::Number;
  double number = 0.0;            // Number
  std::string text;               // Number: its text as written; String: its content
  std::vector<TextValue> items;   // List items, Object values
  std::vector<std::string> keys;  // Object keys, one per value

  // Whole text, surrounding blanks allowed; empty on any fault (never throws on bad text).
  static std::optional<TextValue> Parse(std::string_view text);
};

// Strict readers of a bare number text: the whole text must be the number.
std::optional<double> ParseReal(std::string_view text);
std::optional<int> ParseInteger(std::string_view text);

}  // namespace tavsim

#endif
