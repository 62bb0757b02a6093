#ifndef TAVSIM_SERVER_LIVEVIEW_H
#define TAVSIM_SERVER_LIVEVIEW_H

#include <cstdint>
#include <functional>
#include <string>

namespace tavsim {

// The state as one line of JSON, with the activity entries after `seenActivity`, which it
// moves on to the last one included. Called from the view's HTTP threads.
using StateSource = std::function<std::string(std::uint64_t& seenActivity)>;

// A browser view of a running simulator, served until destroyed. Builds without an HTTP
// library have none, so the simulator holds it only through this interface.
class LiveView {
public:
  virtual ~LiveView() = default;
  virtual std::uint16_t Port() const = 0;
};

}  // namespace tavsim

#endif
