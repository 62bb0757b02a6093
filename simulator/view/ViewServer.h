#ifndef TAVSIM_VIEW_VIEWSERVER_H
#define TAVSIM_VIEW_VIEWSERVER_H

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "server/LiveView.h"

namespace httplib {
class DataSink;
class Server;
}  // namespace httplib

namespace tavsim {

// The live view over HTTP, on threads of its own:
//   /              the page (built into the program) that draws the arm and plots its joints
//   /three.min.js  three.js, from the system's libjs-three
//   /state         the state as JSON
//   /events        the state as server-sent events, one every kEventPeriod
// Read-only: every method but GET and HEAD is refused with 405. Destruction ends the event
// streams, stops the server and joins its threads.
class ViewServer final : public LiveView {
public:
  static constexpr std::chrono::milliseconds kEventPeriod{30};

  // Listens on host:port (0: a free port). Throws std::system_error when it cannot.
  ViewServer(const std::string& host, std::uint16_t requestedPort, StateSource source);
  ~ViewServer() override;
  ViewServer(const ViewServer&) = delete;
  ViewServer& operator=(const ViewServer&) = delete;

  std::uint16_t Port() const override { return port; }

private:
  void _addRoutes();
  void _markStarted();
  // Sends the next event of one stream; false once the stream must end.
  bool _sendEvent(std::uint64_t& seenActivity, bool first, httplib::DataSink& sink);
  // Waits for the next event's time; false when the server is stopping.
  bool _awaitNextEvent();

  StateSource state;
  std::string threeJs;
  std::unique_ptr<httplib::Server> http;
  std::mutex mutex;
  std::condition_variable changed;
  bool started = false;  // the HTTP thread runs its loop, or has left it
  bool stopping = false;
  std::uint16_t port = 0;
  std::thread thread;
};

}  // namespace tavsim

#endif
