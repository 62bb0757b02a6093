#include "server/SimulatorServer.h"

#include <stdexcept>
#include <utility>

#include "server/ServerLoop.h"
#include "server/StateJson.h"
#if TAVSIM_WITH_VIEW
#include "view/ViewServer.h"
#endif

namespace tavsim {

namespace {

// The options with the activity log copied into `activity`, when there is one.
ServerOptions FeedingActivity(ServerOptions options,
                              const std::shared_ptr<ActivityFeed>& activity) {
  if (activity) {
    options.log = [log = std::move(options.log), activity](const std::string& line) {
      activity->Add(line);
      if (log) {
        log(line);
      }
    };
  }
  return options;
}

std::unique_ptr<LiveView> StartView(const ServerOptions& options,
                                    const SimulatedController& controller,
                                    std::shared_ptr<const ActivityFeed> activity) {
  if (!options.view) {
    return nullptr;
  }
#if TAVSIM_WITH_VIEW
  return std::make_unique<ViewServer>(options.host, *options.view,
                                      [&controller, activity](std::uint64_t& seen) {
                                        std::vector<ActivityEntry> entries = activity->After(seen);
                                        if (!entries.empty()) {
                                          seen = entries.back().sequence;
                                        }
                                        return StateJson(controller.Snapshot(), entries);
                                      });
#else
  throw std::runtime_error(
      "this simulator was built without the live view (cpp-httplib was not found)");
#endif
}

}  // namespace

SimulatorServer::SimulatorServer(ServerOptions options)
    : host(options.host),
      controller(std::make_unique<SimulatedController>(options.controller, options.clock)),
      activity(options.view ? std::make_shared<ActivityFeed>() : nullptr),
      loop(std::make_unique<ServerLoop>(FeedingActivity(options, activity), *controller, faults)),
      port(loop->Port()),
      view(StartView(options, *controller, activity)),
      thread([this] { loop->Run(); }) {}

SimulatorServer::~SimulatorServer() { Stop(); }

std::size_t SimulatorServer::ConnectionCount() const { return loop ? loop->ConnectionCount() : 0; }

std::optional<std::uint16_t> SimulatorServer::ViewPort() const {
  if (!view) {
    return std::nullopt;
  }
  return view->Port();
}

void SimulatorServer::Wake() {
  if (loop) {
    loop->Wake();
  }
}

void SimulatorServer::Stop() {
  view.reset();
  if (thread.joinable()) {
    loop->Stop();
    thread.join();
  }
  loop.reset();  // closes the listener
}

}  // namespace tavsim
