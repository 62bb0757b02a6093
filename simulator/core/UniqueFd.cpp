#include "core/UniqueFd.h"

#include <unistd.h>

namespace tavsim {

UniqueFd& UniqueFd::operator=(UniqueFd&& other) noexcept {
  if (this != &other) {
    Reset(other.Release());
  }
  return *this;
}

UniqueFd::~UniqueFd() { Reset(); }

int UniqueFd::Release() {
  const int fd = descriptor;
  descriptor = -1;
  return fd;
}

void UniqueFd::Reset(int fd) {
  if (descriptor >= 0) {
    ::close(descriptor);
  }
  descriptor = fd;
}

}  // namespace tavsim
