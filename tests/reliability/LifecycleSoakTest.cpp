// Sessions opened and closed many times, and Robots made and destroyed many times, leave the
// process with the descriptors, threads and memory it had before.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <cstdio>
#include <string>

#include "Robot.h"
#include "server/SimulatorServer.h"
#include "support/Polling.h"
#include "support/ProcessProbe.h"
#include "support/TemporaryHome.h"

namespace {

using namespace std::chrono_literals;

constexpr int kLoginCycles = 200;
constexpr int kRobots = 100;
constexpr int kWarmUpCycles = 10;
// Heap bytes a run may end with beyond its start: caches of the standard library and the
// logger's queues, whose high-water mark follows how far a starved logger thread fell behind
// (17 KB seen on a loaded machine), settle within this, while a Robot or a session left behind
// per cycle would not (a Robot holds several kilobytes, so hundreds of cycles leave megabytes).
constexpr std::size_t kHeapSlackBytes = 32 * 1024;

struct Footprint {
  std::size_t descriptors;
  std::size_t threads;
  std::size_t heapBytes;
  std::size_t residentBytes;
};

Footprint Measure() {
  return {tavtest::OpenDescriptorCount(), tavtest::ThreadCount(), tavtest::HeapBytesInUse(), tavtest::ResidentBytes()};
}

std::string Describe(const char* what, const Footprint& before, const Footprint& after) {
  char text[256];
  std::snprintf(text, sizeof text,
                "%s: descriptors %zu -> %zu, threads %zu -> %zu, heap %zu -> %zu bytes, resident %zu -> %zu KiB", what,
                before.descriptors, after.descriptors, before.threads, after.threads, before.heapBytes, after.heapBytes,
                before.residentBytes / 1024, after.residentBytes / 1024);
  return text;
}

class LifecycleSoakTest : public ::testing::Test {
protected:
  short Port() const { return static_cast<short>(simulator.Port()); }

  // Runs `cycle` `count` times and expects the process back where it was. The logger thread,
  // the library's singletons and the allocator's caches come with the first cycles and stay
  // for the process's life: a few cycles run before the count starts.
  template <typename Cycle>
  void Soak(const char* what, int count, Cycle cycle) {
    for (int warmUp = 0; warmUp < kWarmUpCycles; ++warmUp) {
      ASSERT_NO_FATAL_FAILURE(cycle());
    }
    // The logger opens its file on its own thread, which a loaded machine may run late.
    ASSERT_TRUE(tavtest::PollUntil(5s, [&] {
      return simulator.ConnectionCount() == 0 && !tavtest::LogLines(::getenv("HOME")).empty();
    }));
    const Footprint before = Measure();
    for (int done = 0; done < count; ++done) {
      ASSERT_NO_FATAL_FAILURE(cycle()) << what << ", cycle " << done;
    }
    // The simulator closes its ends and the logger drains its queue a little later.
    Footprint after{};
    tavtest::PollUntil(5s, [&] {
      after = Measure();
      return simulator.ConnectionCount() == 0 && after.descriptors == before.descriptors &&
             after.threads == before.threads && after.heapBytes <= before.heapBytes + kHeapSlackBytes;
    });
    const std::string figures = Describe(what, before, after);
    std::printf("%s\n", figures.c_str());
    EXPECT_EQ(after.descriptors, before.descriptors) << figures;
    EXPECT_EQ(after.threads, before.threads) << figures;
    EXPECT_LE(after.heapBytes, before.heapBytes + kHeapSlackBytes) << figures;
  }

  void LogIn(Robot& robot) { ASSERT_EQ(robot.RobotLogin("127.0.0.1", Port()), 0); }

  tavsim::SimulatorServer simulator;
};

TEST_F(LifecycleSoakTest, OneRobotLogsInAndOutTwoHundredTimes) {
  Robot robot;
  Soak("200 logins and logouts on one Robot", kLoginCycles, [&] {
    LogIn(robot);
    EXPECT_EQ(robot.RobotLogout(), 0);
  });
}

TEST_F(LifecycleSoakTest, HundredRobotsMadeAndDestroyedNeverLoggedIn) {
  Soak("100 Robots never logged in", kRobots, [] { Robot robot; });
}

TEST_F(LifecycleSoakTest, HundredRobotsMadeAndDestroyedAfterALogout) {
  Soak("100 Robots logged in and out", kRobots, [&] {
    Robot robot;
    LogIn(robot);
    EXPECT_EQ(robot.RobotLogout(), 0);
  });
}

// The destructor logs a session still open out.
TEST_F(LifecycleSoakTest, HundredRobotsMadeAndDestroyedLoggedIn) {
  Soak("100 Robots destroyed logged in", kRobots, [&] {
    Robot robot;
    LogIn(robot);
  });
}

}  // namespace
