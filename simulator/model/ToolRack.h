#ifndef TAVSIM_MODEL_TOOLRACK_H
#define TAVSIM_MODEL_TOOLRACK_H

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace tavsim {

// The end-of-arm tools, addressed by name. Each action puts its tool into an engaged or a
// free state; the tool needs a travel time to get there, after which its sensor reads 1 while
// engaged. Mounted tools, in sensor order:
//   "gripper": "close" engages (jaws shut, 0.5 s), "open" frees; starts open.
//   "vacuum":  "on" engages (suction built up, 0.2 s), "off" frees; starts off.
class ToolRack {
public:
  ToolRack();

  std::size_t Size() const { return tools.size(); }
  // StateCodes::kOk, or kUnknownTool for an unknown tool or action.
  int Act(const std::string& tool, const std::string& action, double now);
  // Sensor of the tool at `index` (mount order): 1 once it has fully engaged, else 0.
  int Sensor(std::size_t index, double now) const;
  // Every tool back to its free state at once.
  void Reset();

private:
  struct Tool {
    std::string name;
    std::map<std::string, bool> actions;  // action -> engages
    double travelSeconds;
    bool engaged = false;
    double changedAt = 0.0;
  };

  std::vector<Tool> tools;
};

}  // namespace tavsim

#endif
