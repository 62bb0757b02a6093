#include "client/CallInterruption.h"

namespace CallInterruption {

namespace {
thread_local Check installed = nullptr;
}

Scope::Scope(Check check) : previous(installed) { installed = check; }

Scope::~Scope() { installed = previous; }

bool Installed() { return installed != nullptr; }

Watch::Watch() : due(std::chrono::steady_clock::now() + kCheckInterval) {}

bool Watch::Requested() {
  if (installed == nullptr) {
    return false;
  }
  const auto now = std::chrono::steady_clock::now();
  if (now < due) {
    return false;
  }
  due = now + kCheckInterval;
  return installed();
}

}  // namespace CallInterruption
