// Sessions opened and closed many times, and Robots made and destroyed many times, leave the
// process with the descriptors, threads and memory it had before.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <cstdio>

#include "Robot.h"
#include "server/SimulatorServer.h"
#include "support/Polling.h"
#include "support/ProcessProbe.h"
#include "support/TemporaryHome.h"

namespace {

using namespace std::chrono_literals;

// Heap bytes a run may end with beyond its start: caches of the standard library and the
// logger's queues, whose high-water mark follows how far a starved logger thread fell behind
// (17 KB seen on a loaded machine), settle within this, while a Robot or a session left behind
// per cycle would not (a Robot holds several kilobytes, so hundreds of cycles leave megabytes).
constexpr std::size_t kHeapSlackBytes = 32 * 1024;

class LifecycleSoakTest : public ::testing::Test {
protected:
  // Runs `cycle` `count` times and expects the process back where it was. The logger thread,
  // the library's singletons and the allocator's caches come with the first cycles and stay
  // for the process's life: ten cycles run before the count starts.
  template <typename Cycle>
  void Soak(const char* what, int count, Cycle cycle) {
    for (int warmUp = 0; warmUp < 10; ++warmUp) {
      ASSERT_NO_FATAL_FAILURE(cycle());
    }
    // The logger opens its file on its own thread, which a loaded machine may run late.
    ASSERT_TRUE(tavtest::PollUntil(5s, [&] {
      return simulator.ConnectionCount() == 0 && !tavtest::LogLines(::getenv("HOME")).empty();
    }));
    const tavtest::Footprint before;
    for (int done = 0; done < count; ++done) {
      ASSERT_NO_FATAL_FAILURE(cycle()) << what << ", cycle " << done;
    }
    // The simulator closes its ends and the logger drains its queue a little later.
    tavtest::Footprint after;
    EXPECT_TRUE(tavtest::PollUntil(5s, [&] {
      after = tavtest::Footprint();
      return simulator.ConnectionCount() == 0 && after.Within(before, kHeapSlackBytes);
    })) << "descriptors, threads or heap did not come back";
    std::printf(
        "%s: descriptors %zu -> %zu, threads %zu -> %zu, heap %zu -> %zu bytes, resident "
        "%zu -> %zu KiB\n",
        what, before.descriptors, after.descriptors, before.threads, after.threads,
        before.heapBytes, after.heapBytes, before.residentBytes / 1024, after.residentBytes / 1024);
  }

  void LogIn(Robot& robot) {
    ASSERT_EQ(robot.RobotLogin("127.0.0.1", static_cast<short>(simulator.Port())), 0);
  }

  tavsim::SimulatorServer simulator;
};

TEST_F(LifecycleSoakTest, OneRobotLogsInAndOutTwoHundredTimes) {
  Robot robot;
  Soak("200 logins and logouts on one Robot", 200, [&] {
    LogIn(robot);
    EXPECT_EQ(robot.RobotLogout(), 0);
  });
}

TEST_F(LifecycleSoakTest, HundredRobotsMadeAndDestroyedNeverLoggedIn) {
  Soak("100 Robots never logged in", 100, [] { Robot robot; });
}

// The destructor logs a session still open out.
TEST_F(LifecycleSoakTest, HundredRobotsMadeAndDestroyedLoggedIn) {
  Soak("100 Robots destroyed logged in", 100, [&] {
    Robot robot;
    LogIn(robot);
  });
}

}  // namespace
