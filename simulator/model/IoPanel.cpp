#include "model/IoPanel.h"

#include <algorithm>

namespace tavsim {

IoPanel::IoPanel(std::size_t outputCount) : outputs(outputCount, 0) {}

bool IoPanel::HasOutput(int channel) const {
  return channel >= 1 && static_cast<std::size_t>(channel) <= outputs.size();
}

bool IoPanel::HasInput(int channel) const {
  return channel >= 1 && static_cast<std::size_t>(channel) <= outputs.size() + tools.Size();
}

void IoPanel::SetOutput(int channel, int value) {
  outputs[static_cast<std::size_t>(channel - 1)] = value;
}

int IoPanel::Input(int channel, double now) const {
  auto index = static_cast<std::size_t>(channel - 1);
  if (index < outputs.size()) {
    return outputs[index];
  }
  return tools.Sensor(index - outputs.size(), now);
}

void IoPanel::ClearOutputs() { std::fill(outputs.begin(), outputs.end(), 0); }

}  // namespace tavsim
