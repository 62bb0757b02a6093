#ifndef TAVTEST_RELIABILITY_FAULTYCONTROLLER_H
#define TAVTEST_RELIABILITY_FAULTYCONTROLLER_H

#include <cstdint>
#include <memory>

#include "server/Fault.h"

namespace tavtest {

// The command whose reply the faults strike: the session's call waits on it.
inline constexpr char kStruckCommand[] = "get_angles";

// The controller end of one fault: a session logs in there, sets a robot up and calls
// kStruckCommand, and the fault strikes while that call waits for its reply.
class FaultyController {
public:
  virtual ~FaultyController() = default;
  virtual std::uint16_t Port() const = 0;
  // Runs on a thread of its own from before the login until the fault has struck.
  virtual void Strike() {}
  // Whether the fault has struck: a call that succeeds proves nothing unless it did.
  virtual bool Struck() = 0;
};

// The in-process simulator with one fault rule.
std::unique_ptr<FaultyController> InjectedFault(tavsim::Fault fault);
// The simulator program in a child process, killed with SIGKILL while the call waits.
std::unique_ptr<FaultyController> KilledProcess();
// A scripted controller that resets the connection (RST) while the call waits.
std::unique_ptr<FaultyController> ResetConnection();

}  // namespace tavtest

#endif
