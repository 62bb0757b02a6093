#include "view/ViewServer.h"

#include <httplib.h>

#include <cerrno>
#include <fstream>
#include <sstream>
#include <system_error>
#include <utility>

#include "view/PageFiles.h"

namespace tavsim {

namespace {

// Event streams hold a worker each for as long as a page stays open.
constexpr std::size_t kWorkers = 8;
// An idle connection (a browser's spare one) holds up stopping at most this long.
constexpr time_t kIdleSeconds = 1;

std::string ContentType(std::string_view name) {
  const auto endsWith = [name](std::string_view tail) {
    return name.size() >= tail.size() && name.substr(name.size() - tail.size()) == tail;
  };
  if (endsWith(".html")) {
    return "text/html; charset=utf-8";
  }
  if (endsWith(".css")) {
    return "text/css";
  }
  return "application/javascript";
}

std::string ReadWholeFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

}  // namespace

ViewServer::ViewServer(const std::string& host, std::uint16_t requestedPort, StateSource source)
    : state(std::move(source)),
      threeJs(ReadWholeFile(TAVSIM_THREE_JS)),
      http(std::make_unique<httplib::Server>()) {
  _addRoutes();
  http->set_keep_alive_max_count(1);
  http->set_keep_alive_timeout(kIdleSeconds);
  http->set_read_timeout(kIdleSeconds);
  // The server asks for its task queue once it is running: from then on stop() ends it.
  http->new_task_queue = [this] {
    _markStarted();
    return new httplib::ThreadPool(kWorkers);
  };
  errno = 0;
  const int bound = requestedPort == 0
                        ? http->bind_to_any_port(host)
                        : (http->bind_to_port(host, requestedPort) ? requestedPort : -1);
  if (bound <= 0) {
    throw std::system_error(errno != 0 ? errno : EADDRNOTAVAIL, std::generic_category(),
                            "live view on " + host + ":" + std::to_string(requestedPort));
  }
  port = static_cast<std::uint16_t>(bound);
  thread = std::thread([this] {
    http->listen_after_bind();
    _markStarted();  // in case it gave up before running
  });
  std::unique_lock<std::mutex> lock(mutex);
  changed.wait(lock, [this] { return started; });
}

void ViewServer::_markStarted() {
  {
    std::lock_guard<std::mutex> lock(mutex);
    started = true;
  }
  changed.notify_all();
}

ViewServer::~ViewServer() {
  {
    std::lock_guard<std::mutex> lock(mutex);
    stopping = true;
  }
  changed.notify_all();
  http->stop();
  thread.join();
}

void ViewServer::_addRoutes() {
  http->set_pre_routing_handler([](const httplib::Request& request, httplib::Response& response) {
    if (request.method == "GET" || request.method == "HEAD") {
      return httplib::Server::HandlerResponse::Unhandled;
    }
    response.status = 405;
    response.set_header("Allow", "GET, HEAD");
    response.set_content("The live view is read-only.\n", "text/plain");
    return httplib::Server::HandlerResponse::Handled;
  });
  for (const PageFile& file : PageFiles()) {
    const std::string path = file.name == "index.html" ? "/" : "/" + std::string(file.name);
    http->Get(path, [file](const httplib::Request&, httplib::Response& response) {
      response.set_content(file.content.data(), file.content.size(), ContentType(file.name));
    });
  }
  http->Get("/three.min.js", [this](const httplib::Request&, httplib::Response& response) {
    if (threeJs.empty()) {
      response.status = 404;
      response.set_content("three.js is not at " TAVSIM_THREE_JS ": install libjs-three\n",
                           "text/plain");
      return;
    }
    response.set_content(threeJs, "application/javascript");
  });
  http->Get("/state", [this](const httplib::Request&, httplib::Response& response) {
    std::uint64_t seenActivity = 0;
    response.set_header("Cache-Control", "no-store");
    response.set_content(state(seenActivity), "application/json");
  });
  http->Get("/events", [this](const httplib::Request&, httplib::Response& response) {
    response.set_header("Cache-Control", "no-store");
    response.set_chunked_content_provider("text/event-stream",
                                          [this, seenActivity = std::uint64_t{0}](
                                              std::size_t offset, httplib::DataSink& sink) mutable {
                                            return _sendEvent(seenActivity, offset == 0, sink);
                                          });
  });
}

bool ViewServer::_sendEvent(std::uint64_t& seenActivity, bool first, httplib::DataSink& sink) {
  // A browser that lost the stream tries again after a second, not its default three.
  std::string event = first ? "retry: 1000\n" : "";
  event += "data: " + state(seenActivity) + "\n\n";
  return sink.write(event.data(), event.size()) && _awaitNextEvent();
}

bool ViewServer::_awaitNextEvent() {
  std::unique_lock<std::mutex> lock(mutex);
  return !changed.wait_for(lock, kEventPeriod, [this] { return stopping; });
}

}  // namespace tavsim
