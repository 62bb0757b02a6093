#include "model/ParamReader.h"

#include <optional>

namespace tavsim {

namespace {

bool AsInteger(const TextValue& value, int& out) {
  if (value.kind != TextValue::Kind::Number && value.kind != TextValue::Kind::String) {
    return false;
  }
  auto parsed = ParseInteger(value.text);
  if (parsed) {
    out = *parsed;
  }
  return parsed.has_value();
}

bool AsReals(const TextValue& value, std::vector<double>& out) {
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

bool AsPose(const TextValue& value, Pose& out) {
  std::vector<double> numbers;
  if (value.kind != TextValue::Kind::List) {
    return false;
  }
  bool nested = value.items.size() == 4 && value.items[3].kind == TextValue::Kind::List;
  if (nested) {
    std::vector<double> turn;
    TextValue position = value;
    position.items.pop_back();
    if (!AsReals(position, numbers) || !AsReals(value.items[3], turn) || turn.size() != 3) {
      return false;
    }
    numbers.insert(numbers.end(), turn.begin(), turn.end());
  } else if (!AsReals(value, numbers) || numbers.size() != 6) {
    return false;
  }
  out = Pose{numbers[0], numbers[1], numbers[2], numbers[3], numbers[4], numbers[5]};
  return true;
}

}  // namespace

template <typename T>
bool ParamReader::_bare(const char* key, T& out,
                        std::optional<T> (*parse)(std::string_view)) const {
  const std::string* written = _find(key);
  auto parsed = written ? parse(*written) : std::nullopt;
  if (parsed) {
    out = *parsed;
  }
  return parsed.has_value();
}

const std::string* ParamReader::_find(const char* key) const {
  auto found = params.find(key);
  return found == params.end() ? nullptr : &found->second;
}

std::optional<TextValue> ParamReader::_value(const char* key) const {
  const std::string* written = _find(key);
  return written ? TextValue::Parse(*written) : std::nullopt;
}

bool ParamReader::Text(const char* key, std::string& out) const {
  const std::string* written = _find(key);
  if (written) {
    out = *written;
  }
  return written != nullptr;
}

bool ParamReader::Real(const char* key, double& out) const { return _bare(key, out, ParseReal); }

bool ParamReader::Positive(const char* key, double& out) const {
  return Real(key, out) && out > 0.0;
}

bool ParamReader::Integer(const char* key, int& out) const { return _bare(key, out, ParseInteger); }

bool ParamReader::Flag(const char* key, bool& out) const {
  int number = 0;
  if (!Integer(key, number) || (number != 0 && number != 1)) {
    return false;
  }
  out = number == 1;
  return true;
}

bool ParamReader::Ids(const char* key, std::vector<int>& out) const {
  auto parsed = _value(key);
  if (!parsed || parsed->kind != TextValue::Kind::List) {
    return false;
  }
  out.clear();
  for (const TextValue& item : parsed->items) {
    int id = 0;
    if (!AsInteger(item, id)) {
      return false;
    }
    out.push_back(id);
  }
  return true;
}

bool ParamReader::Reals(const char* key, std::vector<double>& out) const {
  auto parsed = _value(key);
  return parsed && AsReals(*parsed, out);
}

bool ParamReader::Signals(const char* key, std::vector<std::pair<int, int>>& out) const {
  auto parsed = _value(key);
  if (!parsed || parsed->kind != TextValue::Kind::Object) {
    return false;
  }
  out.clear();
  for (std::size_t i = 0; i < parsed->keys.size(); ++i) {
    auto channel = ParseInteger(parsed->keys[i]);
    int level = 0;
    if (!channel || parsed->items[i].kind != TextValue::Kind::Number ||
        !AsInteger(parsed->items[i], level)) {
      return false;
    }
    out.emplace_back(*channel, level);
  }
  return true;
}

bool ParamReader::SinglePose(const char* key, Pose& out) const {
  auto parsed = _value(key);
  return parsed && AsPose(*parsed, out);
}

bool ParamReader::Poses(const char* key, std::vector<Pose>& out) const {
  auto parsed = _value(key);
  if (!parsed || parsed->kind != TextValue::Kind::List) {
    return false;
  }
  out.clear();
  for (const TextValue& item : parsed->items) {
    Pose pose;
    if (!AsPose(item, pose)) {
      return false;
    }
    out.push_back(pose);
  }
  return true;
}

bool ParamReader::Object(const char* key) const {
  auto parsed = _value(key);
  return parsed && parsed->kind == TextValue::Kind::Object;
}

}  // namespace tavsim
