#include "model/ParamReader.h"

#include <optional>

namespace tavsim {

namespace {

bool asInteger(const TextValue& value, int& out) {
  if (value.kind != TextValue::Kind::Number && value.kind != TextValue::Kind::String) {
    return false;
  }
  auto parsed = parseInteger(value.text);
  if (parsed) {
    out = *parsed;
  }
  return parsed.has_value();
}

bool asReals(const TextValue& value, std::vector<double>& out) {
  if (value.kind != TextValue::Kind::List) {
    return false;
  }
  out.clear();
  for (const TextValue& item : value.items) {
    if (item.kind != TextValue::Kind::Number) {
      return false;
    }
    out.push_back(item.number);
  }
  return true;
}

bool asPose(const TextValue& value, Pose& out) {
  std::vector<double> numbers;
  if (value.kind != TextValue::Kind::List) {
    return false;
  }
  bool nested = value.items.size() == 4 && value.items[3].kind == TextValue::Kind::List;
  if (nested) {
    std::vector<double> turn;
    TextValue position = value;
    position.items.pop_back();
    if (!asReals(position, numbers) || !asReals(value.items[3], turn) || turn.size() != 3) {
      return false;
    }
    numbers.insert(numbers.end(), turn.begin(), turn.end());
  } else if (!asReals(value, numbers) || numbers.size() != 6) {
    return false;
  }
  out = Pose{numbers[0], numbers[1], numbers[2], numbers[3], numbers[4], numbers[5]};
  return true;
}

}  // namespace

template <typename T>
bool ParamReader::bare(const char* key, T& out, std::optional<T> (*parse)(std::string_view)) const {
  const std::string* written = find(key);
  auto parsed = written ? parse(*written) : std::nullopt;
  if (parsed) {
    out = *parsed;
  }
  return parsed.has_value();
}

const std::string* ParamReader::find(const char* key) const {
  auto found = params_.find(key);
  return found == params_.end() ? nullptr : &found->second;
}

std::optional<TextValue> ParamReader::value(const char* key) const {
  const std::string* written = find(key);
  return written ? TextValue::parse(*written) : std::nullopt;
}

bool ParamReader::text(const char* key, std::string& out) const {
  const std::string* written = find(key);
  if (written) {
    out = *written;
  }
  return written != nullptr;
}

bool ParamReader::real(const char* key, double& out) const {
  return bare(key, out, parseReal);
}

bool ParamReader::positive(const char* key, double& out) const {
  return real(key, out) && out > 0.0;
}

bool ParamReader::integer(const char* key, int& out) const {
  return bare(key, out, parseInteger);
}

bool ParamReader::flag(const char* key, bool& out) const {
  int number = 0;
  if (!integer(key, number) || (number != 0 && number != 1)) {
    return false;
  }
  out = number == 1;
  return true;
}

bool ParamReader::ids(const char* key, std::vector<int>& out) const {
  auto parsed = value(key);
  if (!parsed || parsed->kind != TextValue::Kind::List) {
    return false;
  }
  out.clear();
  for (const TextValue& item : parsed->items) {
    int id = 0;
    if (!asInteger(item, id)) {
      return false;
    }
    out.push_back(id);
  }
  return true;
}

bool ParamReader::reals(const char* key, std::vector<double>& out) const {
  auto parsed = value(key);
  return parsed && asReals(*parsed, out);
}

bool ParamReader::signals(const char* key, std::vector<std::pair<int, int>>& out) const {
  auto parsed = value(key);
  if (!parsed || parsed->kind != TextValue::Kind::Object) {
    return false;
  }
  out.clear();
  for (std::size_t i = 0; i < parsed->keys.size(); ++i) {
    auto channel = parseInteger(parsed->keys[i]);
    int level = 0;
    if (!channel || parsed->items[i].kind != TextValue::Kind::Number ||
        !asInteger(parsed->items[i], level)) {
      return false;
    }
    out.emplace_back(*channel, level);
  }
  return true;
}

bool ParamReader::pose(const char* key, Pose& out) const {
  auto parsed = value(key);
  return parsed && asPose(*parsed, out);
}

bool ParamReader::poses(const char* key, std::vector<Pose>& out) const {
  auto parsed = value(key);
  if (!parsed || parsed->kind != TextValue::Kind::List) {
    return false;
  }
  out.clear();
  for (const TextValue& item : parsed->items) {
    Pose pose;
    if (!asPose(item, pose)) {
      return false;
    }
    out.push_back(pose);
  }
  return true;
}

bool ParamReader::object(const char* key) const {
  auto parsed = value(key);
  return parsed && parsed->kind == TextValue::Kind::Object;
}

}  // namespace tavsim
