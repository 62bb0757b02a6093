// Preloaded into a test program, this makes the socket calls on the program's client
// connections (the descriptors it connects) misbehave as a busy system does: at random, seeded
// by TAVTEST_SOCKET_SEED, a call fails with EINTR having moved nothing, a send or recv moves
// fewer bytes than asked, a connect reports EINTR while the connection goes on being made.
// Descriptors that a listening socket accepted are left alone, so an in-process server works
// as always. The counts of what was injected are read through tavtest_socket_faults.
#include <dlfcn.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <cstdlib>

namespace {

constexpr int kTracked = 4096;
constexpr int kInterrupted = 0;
constexpr int kShort = 1;

std::atomic<bool> tracked[kTracked];
std::atomic<unsigned long> injected[2];
std::atomic<bool> enabled{true};
std::atomic<std::uint64_t> threads{0};
thread_local std::uint64_t state = 0;

std::uint64_t Next() {
  if (state == 0) {
    const char* seed = std::getenv("TAVTEST_SOCKET_SEED");
    // Each thread draws its own sequence: the seed and the order in which threads first call.
    state = ((seed != nullptr ? std::strtoull(seed, nullptr, 10) : 1) + ++threads) *
                0x9E3779B97F4A7C15ull |
            1;
  }
  state ^= state << 13;
  state ^= state >> 7;
  state ^= state << 17;
  return state;
}

bool Misbehaves(int fd) { return fd >= 0 && fd < kTracked && tracked[fd] && enabled; }

// One call in four is interrupted.
bool Interrupt(int fd) {
  if (!Misbehaves(fd) || Next() % 4 != 0) {
    return false;
  }
  ++injected[kInterrupted];
  errno = EINTR;
  return true;
}

// One call in three of more than a byte moves only part of it.
std::size_t Shorten(int fd, std::size_t length) {
  if (!Misbehaves(fd) || length < 2 || Next() % 3 != 0) {
    return length;
  }
  ++injected[kShort];
  return 1 + static_cast<std::size_t>(Next() % (length - 1));
}

template <typename Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

extern "C" {

// Faults injected so far: `kind` 0 counts EINTRs, 1 short counts.
unsigned long tavtest_socket_faults(int kind) { return injected[kind]; }
void tavtest_socket_faults_enable(int on) { enabled = on != 0; }

int connect(int fd, const sockaddr* address, socklen_t length) {
  const int result = Real<int(int, const sockaddr*, socklen_t)>("connect")(fd, address, length);
  if (result == 0 && fd >= 0 && fd < kTracked && address->sa_family == AF_INET) {
    tracked[fd] = true;
    // Connected all the same; the caller must find that out by itself.
    if (Interrupt(fd)) {
      return -1;
    }
  }
  return result;
}

int close(int fd) {
  if (fd >= 0 && fd < kTracked) {
    tracked[fd] = false;
  }
  return Real<int(int)>("close")(fd);
}

ssize_t send(int fd, const void* bytes, std::size_t length, int flags) {
  if (Interrupt(fd)) {
    return -1;
  }
  return Real<ssize_t(int, const void*, std::size_t, int)>("send")(fd, bytes, Shorten(fd, length),
                                                                   flags);
}

ssize_t recv(int fd, void* buffer, std::size_t length, int flags) {
  if (Interrupt(fd)) {
    return -1;
  }
  return Real<ssize_t(int, void*, std::size_t, int)>("recv")(fd, buffer, Shorten(fd, length),
                                                             flags);
}

int poll(pollfd* watched, nfds_t count, int timeout) {
  for (nfds_t i = 0; i < count; ++i) {
    if (Interrupt(watched[i].fd)) {
      return -1;
    }
  }
  return Real<int(pollfd*, nfds_t, int)>("poll")(watched, count, timeout);
}

}  // extern "C"
