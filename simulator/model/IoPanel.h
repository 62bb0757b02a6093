#ifndef TAVSIM_MODEL_IOPANEL_H
#define TAVSIM_MODEL_IOPANEL_H

#include <cstddef>
#include <vector>

#include "model/ToolRack.h"

namespace tavsim {

// Digital I/O, channels numbered from 1. Outputs 1..n are wired back to inputs 1..n (a
// loopback harness), so an input reads what its output was last set to. Inputs n+1, n+2, ...
// read the sensors of the mounted tools in mount order.
class IoPanel {
public:
  explicit IoPanel(std::size_t outputCount);

  bool hasOutput(int channel) const;
  bool hasInput(int channel) const;
  void setOutput(int channel, int value);
  // Only for channels where hasInput holds.
  int input(int channel, double now) const;
  void clearOutputs();

  ToolRack& tools() { return tools_; }

private:
  std::vector<int> outputs_;
  ToolRack tools_;
};

}  // namespace tavsim

#endif
