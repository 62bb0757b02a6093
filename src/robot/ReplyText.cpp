#include "robot/ReplyText.h"

#include <algorithm>

namespace ReplyText {
namespace {

constexpr int kMaxMotorId = 10;

void Remove(std::string& text, char unwanted) {
  text.erase(std::remove(text.begin(), text.end(), unwanted), text.end());
}

}  // namespace

std::string ValueOf(const std::map<std::string, std::string>& reply, const std::string& key) {
  const auto entry = reply.find(key);
  return entry == reply.end() ? std::string() : entry->second;
}

std::string Cleaned(std::string text) {
  Remove(text, '[');
  Remove(text, ']');
  Remove(text, ' ');
  return text;
}

void SplitInto(const std::string& text, std::vector<std::string>& pieces,
               const std::string& separator) {
  std::string::size_type start = 0;
  if (separator.empty()) {  // would match everywhere without advancing: no split
    if (!text.empty()) {
      pieces.push_back(text);
    }
    return;
  }
  for (auto found = text.find(separator); found != std::string::npos;
       found = text.find(separator, start)) {
    pieces.push_back(text.substr(start, found - start));
    start = found + separator.size();
  }
  if (start < text.size()) {
    pieces.push_back(text.substr(start));
  }
}

void ReadNumber(const std::string& text, double& value) {
  value = static_cast<double>(std::stof(text));
}

void ReadNumber(const std::string& text, int& value) { value = std::stoi(text); }

std::vector<int> MotorIdsIn(const std::string& result) {
  std::vector<int> ids;
  for (int id = 1; id <= kMaxMotorId && result.find(std::to_string(id)) != std::string::npos;
       ++id) {
    ids.push_back(id);
  }
  return ids;
}

}  // namespace ReplyText
