#include "model/ControllerState.h"

namespace tavsim {

bool ControllerState::Allows(Access access) const {
  switch (access) {
    case Access::Always:
      return true;
    case Access::Configured:
      return mode != ControllerMode::Unconfigured;
    case Access::Motion:
      return mode == ControllerMode::Ready;
  }
  return false;
}

void ControllerState::Configure() {
  if (mode == ControllerMode::Unconfigured) {
    mode = ControllerMode::Ready;
  }
}

}  // namespace tavsim
