#include "support/ClientSocket.h"

#include <sys/ioctl.h>

#include "support/Polling.h"

namespace tavtest {

::testing::AssertionResult WaitQueueEmpty(int socket, unsigned long request, std::chrono::milliseconds wait) {
  int queued = 0;
  if (PollUntil(wait, [&] { return ::ioctl(socket, request, &queued) == 0 && queued == 0; })) {
    return ::testing::AssertionSuccess();
  }
  return ::testing::AssertionFailure() << queued << " bytes still queued after " << wait.count() << " ms";
}

}  // namespace tavtest
