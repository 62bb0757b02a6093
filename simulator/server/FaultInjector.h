#ifndef TAVSIM_SERVER_FAULTINJECTOR_H
#define TAVSIM_SERVER_FAULTINJECTOR_H

#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "server/Fault.h"

namespace tavsim {

// The fault rules of one simulator, shared by all its connections. Any thread may add or
// clear rules while the simulator runs; they apply to replies sent from then on. When several
// rules match a reply, the one added first wins.
class FaultInjector {
public:
  void Add(Fault fault);
  void Clear();
  // Rules that will still change a reply.
  std::size_t Armed() const;
  // Replies changed so far.
  std::size_t Fired() const;

  // The fault for the next reply to `name`, counted as used; nothing when no rule applies.
  // Checksum rules pass over replies that carry no checksum (`hasChecksum` false).
  std::optional<Fault> Take(const std::string& name, bool hasChecksum);

private:
  struct Rule {
    Fault fault;
    int skipsLeft;
    int usesLeft;  // Fault::kEveryTime: unlimited
  };

  mutable std::mutex mutex;
  std::vector<Rule> rules;
  std::size_t fired = 0;
};

}  // namespace tavsim

#endif
