#ifndef TAVBENCH_WIRETAP_H
#define TAVBENCH_WIRETAP_H

#include <string>

namespace bench {

// The wire texts of one get_angles call of one motor: the request exactly as a Robot sends it
// and the reply exactly as the simulator answers it, taken from a relay between the two.
struct WireExchange {
  std::string request;
  std::string reply;
};

// Runs a Robot through the relay once per process and keeps what it saw; throws
// std::runtime_error when the exchange fails.
const WireExchange& GetAnglesExchange();

}  // namespace bench

#endif
