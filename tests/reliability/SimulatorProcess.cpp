#include "SimulatorProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <regex>
#include <stdexcept>

namespace tavtest {

namespace {

constexpr std::chrono::seconds kStartWait{10};

}  // namespace

SimulatorProcess::SimulatorProcess(const std::string& program,
                                   const std::vector<std::string>& options) {
  int pipeEnds[2];
  if (::pipe2(pipeEnds, O_CLOEXEC) != 0) {
    throw std::runtime_error("pipe2: " + std::string(std::strerror(errno)));
  }
  output.Reset(pipeEnds[0]);
  const tavsim::UniqueFd childEnd(pipeEnds[1]);

  std::vector<std::string> words{program};
  words.insert(words.end(), options.begin(), options.end());
  std::vector<char*> argv;
  for (std::string& word : words) {
    argv.push_back(word.data());
  }
  argv.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_adddup2(&actions, childEnd.Get(), STDOUT_FILENO);
  const int spawned = ::posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  if (spawned != 0) {
    pid = -1;
    throw std::runtime_error("cannot start " + program + ": " + std::strerror(spawned));
  }

  const std::regex listening("listening on 127\\.0\\.0\\.1:([0-9]+) ");
  std::smatch found;
  if (!WaitForOutput("(Ctrl-C stops it)\n", kStartWait) ||
      !std::regex_search(printed, found, listening)) {
    Kill();
    throw std::runtime_error(program + " printed no port: " + printed);
  }
  port = static_cast<std::uint16_t>(std::stoi(found[1]));
}

SimulatorProcess::~SimulatorProcess() { Kill(); }

bool SimulatorProcess::WaitForOutput(const std::string& text, std::chrono::milliseconds wait) {
  const auto deadline = std::chrono::steady_clock::now() + wait;
  while (printed.find(text) == std::string::npos) {
    using std::chrono::milliseconds;
    const auto left =
        std::chrono::duration_cast<milliseconds>(deadline - std::chrono::steady_clock::now());
    pollfd readable{output.Get(), POLLIN, 0};
    if (left.count() <= 0 || ::poll(&readable, 1, static_cast<int>(left.count())) <= 0) {
      return false;
    }
    char chunk[512];
    const ssize_t got = ::read(output.Get(), chunk, sizeof chunk);
    if (got <= 0) {
      return false;  // the program has ended
    }
    printed.append(chunk, static_cast<std::size_t>(got));
  }
  return true;
}

void SimulatorProcess::Signal(int number) {
  if (pid > 0) {
    ::kill(pid, number);
  }
}

void SimulatorProcess::Kill() {
  if (pid <= 0) {
    return;
  }
  ::kill(pid, SIGKILL);
  while (::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
  }
  pid = -1;
}

}  // namespace tavtest
