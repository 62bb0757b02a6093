#include "JointNames.h"

#include <algorithm>
#include <utility>

namespace tavdriver {

namespace {

// The motor id in `name` after `stem`, or 0 when the rest is not a plain positive number.
int _idAfter(const std::string& name, const std::string& stem) {
  if (name.size() <= stem.size() || name.compare(0, stem.size(), stem) != 0 ||
      name.size() - stem.size() > 2) {
    return 0;
  }
  int id = 0;
  for (std::size_t i = stem.size(); i < name.size(); ++i) {
    if (name[i] < '0' || name[i] > '9') {
      return 0;
    }
    id = id * 10 + (name[i] - '0');
  }
  return name[stem.size()] == '0' ? 0 : id;
}

}  // namespace

JointNames::JointNames(std::string jointPrefix) : prefix(std::move(jointPrefix)) {}

std::string JointNames::Name(int motorId) const {
  return prefix + "joint_" + std::to_string(motorId);
}

std::vector<std::string> JointNames::Names(const std::vector<int>& motorIds) const {
  std::vector<std::string> names;
  names.reserve(motorIds.size());
  for (int id : motorIds) {
    names.push_back(Name(id));
  }
  return names;
}

bool JointNames::MotorIds(const std::vector<std::string>& names, const std::vector<int>& known,
                          std::vector<int>& ids, std::string& reason) const {
  ids.clear();
  if (names.empty()) {
    reason = "no joint names";
    return false;
  }
  for (const std::string& name : names) {
    const int id = _idAfter(name, prefix + "joint_");
    if (id == 0 || std::find(known.begin(), known.end(), id) == known.end()) {
      reason = "unknown joint '" + name + "'";
      return false;
    }
    if (std::find(ids.begin(), ids.end(), id) != ids.end()) {
      reason = "joint '" + name + "' named twice";
      return false;
    }
    ids.push_back(id);
  }
  return true;
}

}  // namespace tavdriver
