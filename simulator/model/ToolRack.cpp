#include "model/ToolRack.h"

#include "model/StateCodes.h"

namespace tavsim {

ToolRack::ToolRack()
    : tools{{"gripper", {{"close", true}, {"open", false}}, 0.5},
            {"vacuum", {{"on", true}, {"off", false}}, 0.2}} {}

int ToolRack::Act(const std::string& tool, const std::string& action, double now) {
  for (Tool& t : tools) {
    if (t.name != tool) {
      continue;
    }
    auto found = t.actions.find(action);
    if (found == t.actions.end()) {
      return StateCodes::kUnknownTool;
    }
    if (t.engaged != found->second) {
      t.engaged = found->second;
      t.changedAt = now;
    }
    return StateCodes::kOk;
  }
  return StateCodes::kUnknownTool;
}

int ToolRack::Sensor(std::size_t index, double now) const {
  const Tool& t = tools[index];
  return t.engaged && now >= t.changedAt + t.travelSeconds ? 1 : 0;
}

void ToolRack::Reset() {
  for (Tool& t : tools) {
    t.engaged = false;
  }
}

}  // namespace tavsim
