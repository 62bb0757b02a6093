#ifndef TAVBENCH_PINGPONG_H
#define TAVBENCH_PINGPONG_H

#include <cstddef>
#include <optional>
#include <string>
#include <thread>

#include "core/Connection.h"
#include "core/UniqueFd.h"

namespace bench {

// The floor under every round trip: a peer thread on 127.0.0.1 that answers each request of a
// fixed size with a reply of a fixed size, and the client end that times one exchange, with
// plain send and recv in between and no library.
class PingPong {
public:
  PingPong(std::size_t requestBytes, std::size_t replyBytes);
  ~PingPong();
  PingPong(const PingPong&) = delete;
  PingPong& operator=(const PingPong&) = delete;

  // One request and its whole reply; 0, or errno of the failed call.
  int RoundTrip();

private:
  void Serve();

  const std::string request;
  const std::string reply;
  std::string replyBuffer;
  tavsim::UniqueFd client;
  std::optional<tavsim::Connection> server;
  std::thread peer;
};

}  // namespace bench

#endif
