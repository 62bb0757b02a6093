#include "model/ControllerState.h"

namespace tavsim {

bool ControllerState::allows(Access access) const {
  switch (access) {
    case Access::Always:
      return true;
    case Access::Configured:
      return mode_ != ControllerMode::Unconfigured;
    case Access::Motion:
      return mode_ == ControllerMode::Ready;
  }
  return false;
}

void ControllerState::configure() {
  if (mode_ == ControllerMode::Unconfigured) {
    mode_ = ControllerMode::Ready;
  }
}

}  // namespace tavsim
