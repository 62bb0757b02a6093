// A control loop kept busy for a shift while its controller process is in turn killed and
// restarted, or frozen and thawed: every call ends within its bound with a code an application
// acts on, the reconnect loop brings the session back each time, and the process ends with the
// descriptors, threads, heap and log it had after warm-up. TAVTEST_SOAK_SECONDS sets the length.
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

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
// A call ends by the heartbeat's silence limit (1 s, half the reply time-out, so a frozen
// controller shows as silence) and a loaded machine's lateness.
constexpr auto kCallBound = 1250ms;
constexpr auto kHealthyGap = 4s;  // from one recovery to the next disturbance
constexpr auto kFrozen = 2s;      // longer than the silence limit, so the freeze is noticed
constexpr auto kQuietEnd = 3s;    // without disturbances at the end of the shift
constexpr auto kRecoveryWait = 10s;
// Heap for caches that settle (a session or buffer left per reconnection would not), and the
// warnings a failed session and its refused retries log per disturbance.
constexpr std::size_t kHeapSlack = 64 * 1024;
constexpr std::size_t kLogBytesPerDisturbance = 8 * 1024;
const std::set<int> kExpectedCodes{RobotEvents::kSendFailed, RobotEvents::kReceiveFailed,
                                   RobotEvents::kReplyTimeout, RobotEvents::kControllerSilent,
                                   RobotEvents::kConnectFailed};

std::size_t LogBytes() {
  std::size_t bytes = 0;
  for (const std::string& line : tavtest::LogLines(::getenv("HOME"))) {
    bytes += line.size() + 1;
  }
  return bytes;
}

class ShiftSoakTest : public ::testing::Test {
protected:
  // The level is the process's: the next test in this program logs everything again.
  void TearDown() override { Robot::SetLogLevel(0); }

  // One call of the application's: it must end within its bound with 0 or a code to act on.
  template <typename Call>
  int Timed(Call call) {
    const auto start = Clock::now();
    const int code = call();
    EXPECT_LE(Clock::now() - start, kCallBound) << "a call that returned " << code;
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
      std::this_thread::sleep_for(10ms);
    }
    return false;
  }

  // get_angles once per 1 ms slot until `end`, reconnecting on any failure; tells the
  // disturber when the session was lost and when it came back.
  void Loop(Clock::time_point end) {
    double angle = 0.0;
    for (auto slot = Clock::now(); Clock::now() < end; std::this_thread::sleep_until(slot += 1ms)) {
      ++calls;
      if (Timed([&] { return robot.get_angles(1, angle); }) == 0) {
        continue;
      }
      const Clock::time_point failed = Clock::now();
      ASSERT_TRUE(Reconnect(failed + kRecoveryWait)) << "no reconnection";
      const std::lock_guard<std::mutex> lock(mutex);
      failedAt = failed;
      recoveredAt = slot = Clock::now();
      changed.notify_all();
    }
  }

  // Until `end`: after a healthy gap, kills and restarts or freezes and thaws the controller,
  // then waits for the loop to notice and come back.
  void Disturb(Clock::time_point end) {
    for (bool kill = true; Clock::now() + kHealthyGap + kQuietEnd < end; kill = !kill) {
      std::this_thread::sleep_for(kHealthyGap);
      const char* kind = kill ? "kill" : "stop";
      const auto struck = Clock::now();
      if (kill) {
        Restart();
      } else {
        simulator->Signal(SIGSTOP);
        std::this_thread::sleep_for(kFrozen);
        simulator->Signal(SIGCONT);
      }
      const auto restored = Clock::now();
      // A restarted controller may take the loop back before its parent has read its port.
      std::unique_lock<std::mutex> lock(mutex);
      if (!changed.wait_for(lock, kRecoveryWait, [&] { return failedAt >= struck; })) {
        ADD_FAILURE() << "the loop did not notice the " << kind << " or did not reconnect";
        return;
      }
      ++disturbances[kind];
      std::printf("%s: noticed in %.1f ms, reconnected %.1f ms after the return\n", kind,
                  Millis(failedAt - struck).count(), Millis(recoveredAt - restored).count());
    }
  }

  // Only a controller told its port takes it with SO_REUSEADDR, which a restart needs while the
  // old connections linger: the first start, on a port the system picks, is restarted at once.
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
  std::mutex mutex;
  std::condition_variable changed;
  Clock::time_point failedAt;
  Clock::time_point recoveredAt;
  std::map<std::string, std::size_t> disturbances;
};

TEST_F(ShiftSoakTest, ControlLoopRidesOutKilledAndFrozenControllers) {
  const auto start = Clock::now();
  const char* seconds = ::getenv("TAVTEST_SOAK_SECONDS");
  const auto end = start + std::chrono::duration_cast<Clock::duration>(Seconds(
                               seconds ? std::atof(seconds) : TAVTEST_SOAK_DEFAULT_SECONDS));
  // A 1 kHz loop logs its warnings only, as a shift's log would otherwise fill its disk cap.
  ASSERT_EQ(Robot::SetLogLevel(2), 0);
  ASSERT_NO_THROW(Restart());
  ASSERT_EQ(robot.SetReplyTimeout(2.0), 0);
  ASSERT_EQ(robot.SetHeartbeat(0.2, 1.0), 0);
  ASSERT_TRUE(Reconnect(start + kRecoveryWait));
  ASSERT_NO_FATAL_FAILURE(Loop(start + 2s));  // warm-up
  const tavtest::Footprint before;
  const std::size_t logBytes = LogBytes();

  std::thread disturber([&] { Disturb(end); });
  Loop(end);
  disturber.join();
  ASSERT_FALSE(HasFatalFailure());
  double angle = 0.0;
  ASSERT_EQ(robot.get_angles(1, angle), 0) << "the shift ends unhealthy";

  // The heartbeat's and the logger's threads may still be finishing what the last failure began.
  tavtest::Footprint after;
  EXPECT_TRUE(tavtest::PollUntil(5s, [&] {
    after = tavtest::Footprint();
    return after.Within(before, kHeapSlack);
  })) << "descriptors, threads or heap did not come back";
  const std::size_t logged = LogBytes() - logBytes;
  std::printf("shift of %.0f s: %ld calls; failures by code:",
              Seconds(Clock::now() - start).count(), calls);
  for (const auto& [code, count] : failures) {
    std::printf(" %d x%ld", code, count);
  }
  std::printf("\ndescriptors %zu -> %zu, threads %zu -> %zu, heap %zu -> %zu B, log +%zu B\n",
              before.descriptors, after.descriptors, before.threads, after.threads,
              before.heapBytes, after.heapBytes, logged);
  EXPECT_GE(disturbances["kill"], 1u);
  EXPECT_GE(disturbances["stop"], 1u);
  EXPECT_LE(logged, kLogBytesPerDisturbance * (disturbances["kill"] + disturbances["stop"]));
}

}  // namespace
