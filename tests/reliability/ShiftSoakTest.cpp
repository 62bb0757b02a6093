// A control loop kept busy for a shift while its controller process is killed and restarted,
// and frozen and thawed: every call returns within its bound with a code an application acts
// on, the application's reconnect loop brings the session back each time, and the process
// ends with the descriptors, threads, heap and log it settled at after warm-up.
// TAVTEST_SOAK_SECONDS sets the shift's length (scripts/soak.sh runs long ones).
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>

#include "Robot.h"
#include "SimulatorProcess.h"
#include "common/RobotEvent.h"
#include "support/Polling.h"
#include "support/ProcessProbe.h"
#include "support/TemporaryHome.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;
using Millis = std::chrono::duration<double, std::milli>;

const Setup_Param kChannel{"can0", "can", "canopen", 1, 500000};
constexpr auto kSlot = 1ms;  // the loop's pace
// The reply time-out is twice the silence limit, so a frozen controller shows as silence.
constexpr Seconds kReplyTimeout{2.0};
constexpr Seconds kSilenceLimit{1.0};
// A call ends by the silence limit plus this for a loaded machine.
constexpr auto kLateness = 250ms;
constexpr auto kWarmUp = 2s;
constexpr auto kHealthyGap = 4s;  // from one recovery to the next disturbance
constexpr auto kFrozen = 2s;      // longer than the silence limit, so the freeze is noticed
constexpr auto kQuietEnd = 3s;    // without disturbances at the end of the shift
constexpr auto kRetryInterval = 10ms;
constexpr auto kRecoveryWait = 10s;
// Bytes of heap for caches that settle; a session or buffer left per reconnection would not.
constexpr std::size_t kHeapSlack = 64 * 1024;
// Per disturbance, what warnings a failed session and its refused retries write.
constexpr std::size_t kLogBytesPerDisturbance = 8 * 1024;
const std::set<int> kExpectedCodes{RobotEvents::kSendFailed, RobotEvents::kReceiveFailed,
                                   RobotEvents::kReplyTimeout, RobotEvents::kControllerSilent,
                                   RobotEvents::kConnectFailed};

Seconds ShiftLength() {
  const char* text = ::getenv("TAVTEST_SOAK_SECONDS");
  return Seconds(text != nullptr ? std::atof(text) : TAVTEST_SOAK_DEFAULT_SECONDS);
}

std::size_t LogBytes() {
  std::size_t bytes = 0;
  for (const std::string& line : tavtest::LogLines(::getenv("HOME"))) {
    bytes += line.size() + 1;
  }
  return bytes;
}

// Shortest and longest of what one kind of disturbance took.
struct Span {
  int count = 0;
  double least = 1e9;
  double most = 0;
  void Add(Clock::duration took) {
    const double ms = Millis(took).count();
    ++count;
    least = std::min(least, ms);
    most = std::max(most, ms);
  }
};

class ShiftSoakTest : public ::testing::Test {
protected:
  // The level is the process's: the next test in this program logs everything again.
  void TearDown() override { Robot::SetLogLevel(0); }

  // Times one call of the application's, which must end within its bound with 0 or a code
  // it can act on.
  template <typename Call>
  int Timed(Call call) {
    const auto start = Clock::now();
    const int code = call();
    const auto took = Clock::now() - start;
    longest = std::max(longest, took);
    EXPECT_LE(took, kSilenceLimit + kLateness) << "a call that returned " << code;
    if (code != 0) {
      ++failures[code];
      EXPECT_TRUE(kExpectedCodes.count(code)) << "unexpected code " << code;
    }
    return code;
  }

  bool Reconnect(Clock::time_point deadline) {
    while (Clock::now() < deadline) {
      if (Timed([&] { return robot.RobotLogin("127.0.0.1", static_cast<short>(port)); }) == 0 &&
          Timed([&] { return robot.Setup("arm", kChannel, Setup_Mode::Virtual); }) == 0) {
        return true;
      }
      std::this_thread::sleep_for(kRetryInterval);
    }
    return false;
  }

  // get_angles once per slot until `end`, reconnecting on any failure.
  void Loop(Clock::time_point end) {
    double angle = 0.0;
    for (auto slot = Clock::now(); Clock::now() < end;
         std::this_thread::sleep_until(slot += kSlot)) {
      ++calls;
      if (Timed([&] { return robot.get_angles(1, angle); }) == 0) {
        continue;
      }
      Mark(failedAt);
      ASSERT_TRUE(Reconnect(Clock::now() + kRecoveryWait)) << "no reconnection";
      Mark(recoveredAt);
      slot = Clock::now();
    }
  }

  // Tells the disturber when the loop lost and regained its session.
  void Mark(Clock::time_point& when) {
    const std::lock_guard<std::mutex> lock(mutex);
    when = Clock::now();
    changed.notify_all();
  }

  // Until `end`: waits a healthy gap, then kills and restarts or freezes and thaws the
  // controller, and waits for the loop to notice and come back.
  void Disturb(Clock::time_point end) {
    for (bool kill = true; Clock::now() + kHealthyGap + kQuietEnd < end; kill = !kill) {
      std::this_thread::sleep_for(kHealthyGap);
      const auto struck = Clock::now();
      if (kill) {
        try {
          Restart();
        } catch (const std::runtime_error& error) {
          ADD_FAILURE() << "no restart: " << error.what();
          return;
        }
      } else {
        simulator->Signal(SIGSTOP);
        std::this_thread::sleep_for(kFrozen);
        simulator->Signal(SIGCONT);
      }
      const auto restored = Clock::now();
      // A restarted controller may take the loop back before its parent has read its port.
      std::unique_lock<std::mutex> lock(mutex);
      if (!changed.wait_for(lock, kRecoveryWait,
                            [&] { return failedAt >= struck && recoveredAt > failedAt; })) {
        ADD_FAILURE() << "the loop did not notice the " << (kill ? "kill" : "stop")
                      << " or did not reconnect";
        return;
      }
      noticed[kill ? "kill" : "stop"].Add(failedAt - struck);
      reconnected[kill ? "kill" : "stop"].Add(recoveredAt - restored);
    }
  }

  // Kills the controller and starts it again on its port. Only a controller told its port takes
  // it with SO_REUSEADDR, which a restart needs while the old connections linger: the first
  // start, on a port the system picks, is restarted before the shift.
  void Restart() {
    simulator->Kill();
    simulator.emplace(TAVSIM_PROGRAM,
                      std::vector<std::string>{"--port", std::to_string(port), "--quiet"});
  }

  std::optional<tavtest::SimulatorProcess> simulator{
      std::in_place, TAVSIM_PROGRAM, std::vector<std::string>{"--port", "0", "--quiet"}};
  std::uint16_t port = simulator->Port();
  Robot robot;
  long calls = 0;
  std::map<int, long> failures;
  Clock::duration longest{};
  std::mutex mutex;
  std::condition_variable changed;
  Clock::time_point failedAt;
  Clock::time_point recoveredAt;
  std::map<std::string, Span> noticed;
  std::map<std::string, Span> reconnected;
};

TEST_F(ShiftSoakTest, ControlLoopRidesOutKilledAndFrozenControllers) {
  const auto start = Clock::now();
  const auto end = start + std::chrono::duration_cast<Clock::duration>(ShiftLength());
  // A 1 kHz loop logs its warnings only, as a shift's log would otherwise fill its disk cap.
  ASSERT_EQ(Robot::SetLogLevel(2), 0);
  ASSERT_NO_THROW(Restart());
  ASSERT_EQ(robot.SetReplyTimeout(kReplyTimeout.count()), 0);
  ASSERT_EQ(robot.SetHeartbeat(0.2, kSilenceLimit.count()), 0);
  ASSERT_TRUE(Reconnect(start + kRecoveryWait));
  ASSERT_NO_FATAL_FAILURE(Loop(start + kWarmUp));
  const std::size_t descriptors = tavtest::OpenDescriptorCount();
  const std::size_t threads = tavtest::ThreadCount();
  const std::size_t heap = tavtest::HeapBytesInUse();
  const std::size_t logBytes = LogBytes();

  std::thread disturber([&] { Disturb(end); });
  Loop(end);
  disturber.join();
  ASSERT_FALSE(HasFatalFailure());
  double angle = 0.0;
  ASSERT_EQ(robot.get_angles(1, angle), 0) << "the shift ends unhealthy";

  // The heartbeat's and the logger's threads may still be finishing what the last failure began.
  std::size_t descriptorsNow = 0, threadsNow = 0, heapNow = 0;
  const bool settled = tavtest::PollUntil(5s, [&] {
    descriptorsNow = tavtest::OpenDescriptorCount();
    threadsNow = tavtest::ThreadCount();
    heapNow = tavtest::HeapBytesInUse();
    return descriptorsNow == descriptors && threadsNow == threads && heapNow <= heap + kHeapSlack;
  });
  const std::size_t logged = LogBytes() - logBytes;
  const int disturbances = noticed["kill"].count + noticed["stop"].count;
  std::printf("shift of %.0f s: %ld calls, longest %.1f ms; failures by code:",
              Seconds(Clock::now() - start).count(), calls, Millis(longest).count());
  for (const auto& [code, count] : failures) {
    std::printf(" %d x%ld", code, count);
  }
  for (const char* kind : {"kill", "stop"}) {
    std::printf("\n%s x%d: noticed in %.1f..%.1f ms, reconnected %.1f..%.1f ms after the return",
                kind, noticed[kind].count, noticed[kind].least, noticed[kind].most,
                reconnected[kind].least, reconnected[kind].most);
  }
  std::printf(
      "\ndescriptors %zu -> %zu, threads %zu -> %zu, heap %zu -> %zu B, resident %zu KiB, "
      "log +%zu B\n",
      descriptors, descriptorsNow, threads, threadsNow, heap, heapNow,
      tavtest::ResidentBytes() / 1024, logged);
  EXPECT_GE(noticed["kill"].count, 1);
  EXPECT_GE(noticed["stop"].count, 1);
  EXPECT_TRUE(settled) << "descriptors, threads or heap did not come back";
  EXPECT_LE(logged, kLogBytesPerDisturbance * static_cast<std::size_t>(disturbances));
}

}  // namespace
