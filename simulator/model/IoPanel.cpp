#include "model/IoPanel.h"

#include <algorithm>

namespace tavsim {

IoPanel::IoPanel(std::size_t outputCount) : outputs_(outputCount, 0) {}

bool IoPanel::hasOutput(int channel) const {
  return channel >= 1 && static_cast<std::size_t>(channel) <= outputs_.size();
}

bool IoPanel::hasInput(int channel) const {
  return channel >= 1 && static_cast<std::size_t>(channel) <= outputs_.size() + tools_.size();
}

void IoPanel::setOutput(int channel, int value) {
  outputs_[static_cast<std::size_t>(channel - 1)] = value;
}

int IoPanel::input(int channel, double now) const {
  auto index = static_cast<std::size_t>(channel - 1);
  if (index < outputs_.size()) {
    return outputs_[index];
  }
  return tools_.sensor(index - outputs_.size(), now);
}

void IoPanel::clearOutputs() {
  std::fill(outputs_.begin(), outputs_.end(), 0);
}

}  // namespace tavsim
