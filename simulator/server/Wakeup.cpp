#include "server/Wakeup.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

namespace tavsim {

Wakeup::Wakeup() : fd(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {
  if (!fd.Valid()) {
    throw std::system_error(errno, std::generic_category(), "eventfd");
  }
}

void Wakeup::Notify() {
  const std::uint64_t one = 1;
  // A full counter means a wake-up is pending anyway.
  [[maybe_unused]] const ssize_t written = ::write(fd.Get(), &one, sizeof one);
}

void Wakeup::Drain() {
  std::uint64_t count = 0;
  [[maybe_unused]] const ssize_t read = ::read(fd.Get(), &count, sizeof count);
}

}  // namespace tavsim
