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

  bool HasOutput(int channel) const;
  bool HasInput(int channel) const;
  void SetOutput(int channel, int value);
  // Only for channels where hasInput holds.
  int Input(int channel, double now) const;
  void ClearOutputs();

  ToolRack& Tools() { return tools; }

private:
  std::vector<int> outputs;
  ToolRack tools;
};

}  // namespace tavsim

#endif
