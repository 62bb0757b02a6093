#include "server/FaultInjector.h"

#include <utility>

namespace tavsim {

void FaultInjector::Add(Fault fault) {
  std::lock_guard<std::mutex> lock(mutex);
  const int skips = fault.after;
  const int uses = fault.times;
  rules.push_back(Rule{std::move(fault), skips, uses});
}

void FaultInjector::Clear() {
  std::lock_guard<std::mutex> lock(mutex);
  rules.clear();
}

std::size_t FaultInjector::Armed() const {
  std::lock_guard<std::mutex> lock(mutex);
  return rules.size();
}

std::size_t FaultInjector::Fired() const {
  std::lock_guard<std::mutex> lock(mutex);
  return fired;
}

std::optional<Fault> FaultInjector::Take(const std::string& name, bool hasChecksum) {
  std::lock_guard<std::mutex> lock(mutex);
  for (auto rule = rules.begin(); rule != rules.end(); ++rule) {
    const Fault& fault = rule->fault;
    if ((!fault.on.empty() && fault.on != name) ||
        (fault.kind == FaultKind::BadChecksum && !hasChecksum)) {
      continue;
    }
    if (rule->skipsLeft > 0) {
      --rule->skipsLeft;
      continue;
    }
    Fault taken = fault;
    if (rule->usesLeft != Fault::kEveryTime && --rule->usesLeft <= 0) {
      rules.erase(rule);
    }
    ++fired;
    return taken;
  }
  return std::nullopt;
}

}  // namespace tavsim
