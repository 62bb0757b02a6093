#include "ChildProcess.h"

#include <netinet/in.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <random>
#include <stdexcept>
#include <thread>

namespace tavrostest {

ChildProcess::ChildProcess(std::vector<std::string> command) {
  std::vector<char*> argv;
  for (std::string& word : command) {
    argv.push_back(word.data());
  }
  argv.push_back(nullptr);
  // The test process blocks signals in some threads; the child starts with none blocked.
  posix_spawnattr_t attributes;
  ::posix_spawnattr_init(&attributes);
  sigset_t none;
  sigemptyset(&none);
  ::posix_spawnattr_setsigmask(&attributes, &none);
  ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
  const int spawned = ::posix_spawnp(&pid, argv[0], nullptr, &attributes, argv.data(), environ);
  ::posix_spawnattr_destroy(&attributes);
  if (spawned != 0) {
    pid = -1;
    throw std::runtime_error("cannot start " + command[0] + ": " + std::strerror(spawned));
  }
}

ChildProcess::~ChildProcess() {
  if (pid > 0) {
    ::kill(pid, SIGKILL);
    WaitExit(std::chrono::seconds(10));
  }
}

void ChildProcess::Signal(int number) {
  if (pid > 0) {
    ::kill(pid, number);
  }
}

bool ChildProcess::WaitExit(std::chrono::milliseconds wait) {
  const auto deadline = std::chrono::steady_clock::now() + wait;
  while (pid > 0) {
    const pid_t ended = ::waitpid(pid, &status, WNOHANG);
    if (ended == pid || (ended < 0 && errno != EINTR)) {
      pid = -1;
      return true;
    }
    if (std::chrono::steady_clock::now() >= deadline) {
      return false;
    }
    // A child's end is not signalled to a waiting thread: look again every millisecond.
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

int FreePort() {
  // Below the kernel's ephemeral range (32768 and up by default): a client that keeps
  // connecting to a closed port of that range may be given it as its own port and connect to
  // itself, and a controller restarted there then finds its port taken.
  static std::mt19937 random(std::random_device{}());
  std::uniform_int_distribution<int> ports(20000, 32000);
  for (int attempt = 0; attempt < 100; ++attempt) {
    const int port = ports(random);
    const int probe = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    const bool free =
        probe >= 0 && ::bind(probe, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
    if (probe >= 0) {
      ::close(probe);
    }
    if (free) {
      return port;
    }
  }
  throw std::runtime_error("no free port between 20000 and 32000");
}

}  // namespace tavrostest
