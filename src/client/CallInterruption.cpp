#include "client/CallInterruption.h"

namespace CallInterruption {

namespace {
thread_local Check installed = nullptr;
}

Scope::Scope(Check check) : previous(installed) { installed = check; }

Scope::~Scope() { installed = previous; }

bool Installed() { return installed != nullptr; }

bool Requested() { return installed != nullptr && installed(); }

}  // namespace CallInterruption
