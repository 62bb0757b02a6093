// Every fault a controller can do to a call that waits, as an application lives through it:
// the call returns its code in time, nothing spins or floods the log afterwards, and a new
// Robot in the same process works.
#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <future>
#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "FaultyController.h"
#include "Robot.h"
#include "common/RobotEvent.h"
#include "server/SimulatorServer.h"
#include "support/ProcessProbe.h"
#include "support/TemporaryHome.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using tavsim::Fault;
using tavtest::FaultyController;
using tavtest::InjectedFault;
using tavtest::kStruckCommand;

const Setup_Param kChannel{"can0", "can", "canopen", 1, 500000};
constexpr std::chrono::seconds kReplyTimeout{1};
// Past its time-out or its fault, a call has this long to return.
constexpr auto kLateness = 100ms;
// 1% of a core over the second after the fault.
constexpr double kIdleCpuSeconds = 0.01;
// A session's own lines (workers starting, login, set-up, the fault) stay well below this;
// a thread that retried or reported without end would write thousands.
constexpr std::size_t kMaxLogLines = 30;

struct Row {
  std::string name;
  std::function<std::unique_ptr<FaultyController>()> controller;
  int expected;
  // What the library's log says of this fault, when it says something.
  std::string logged;
};

// Names the row in gtest's messages instead of dumping its bytes.
void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name;
}

const std::vector<Row> kRows{
    {"DelayWithinTimeout", [] { return InjectedFault(Fault::DelayReply(kStruckCommand, 300ms)); }, 0, ""},
    // The late reply comes during the idle second and is dropped.
    {"DelayBeyondTimeout", [] { return InjectedFault(Fault::DelayReply(kStruckCommand, 1500ms)); },
     RobotEvents::kReplyTimeout, "nobody waits for"},
    {"Drop", [] { return InjectedFault(Fault::DropReply(kStruckCommand)); }, RobotEvents::kReplyTimeout, ""},
    {"ErrorMessage", [] { return InjectedFault(Fault::ErrorInstead(kStruckCommand, "2001091")); }, 2001091,
     "recv an error"},
    {"ErrorMessageWithCodeZero", [] { return InjectedFault(Fault::ErrorInstead(kStruckCommand, "0")); },
     RobotEvents::kDecodeFailed, "recv an error"},
    {"Garbage", [] { return InjectedFault(Fault::GarbageInstead(kStruckCommand)); }, RobotEvents::kDecodeFailed,
     "unwrap failed"},
    {"CorruptChecksum", [] { return InjectedFault(Fault::CorruptChecksum(kStruckCommand)); },
     RobotEvents::kDecodeFailed, "unwrap failed"},
    {"Split", [] { return InjectedFault(Fault::SplitReply(kStruckCommand, 4, 100ms)); }, 0, ""},
    {"Close", [] { return InjectedFault(Fault::CloseConnection(kStruckCommand)); }, RobotEvents::kReceiveFailed,
     "closed by peer"},
    {"ProcessKilled", tavtest::KilledProcess, RobotEvents::kReceiveFailed, "closed by peer"},
    {"ConnectionReset", tavtest::ResetConnection, RobotEvents::kReceiveFailed, "recv failed"},
};

short PortArg(std::uint16_t port) {
  return static_cast<short>(port);
}

// The lines a log gained since it held `before`.
std::vector<std::string> LinesSince(std::size_t before) {
  std::vector<std::string> lines = tavtest::LogLines(::getenv("HOME"));
  lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(std::min(before, lines.size())));
  return lines;
}

bool AnyContains(const std::vector<std::string>& lines, const std::string& text) {
  return std::any_of(lines.begin(), lines.end(),
                     [&text](const std::string& line) { return line.find(text) != std::string::npos; });
}

class FaultMatrixTest : public ::testing::TestWithParam<Row> {
protected:
  tavsim::SimulatorServer healthy;  // where a new Robot logs in after the fault
};

TEST_P(FaultMatrixTest, WaitingCallReturnsItsCodeInTimeAndANewRobotWorks) {
  const Row& row = GetParam();
  const std::size_t linesBefore = tavtest::LogLines(::getenv("HOME")).size();
  const std::unique_ptr<FaultyController> controller = row.controller();
  // Joined by its destructor, after the Robot below has gone; its end orders Struck after it.
  const std::future<void> striking = std::async(std::launch::async, [&] { controller->Strike(); });

  Robot robot;
  ASSERT_EQ(robot.SetReplyTimeout(std::chrono::duration<double>(kReplyTimeout).count()), 0);
  ASSERT_EQ(robot.RobotLogin("127.0.0.1", PortArg(controller->Port())), 0);
  ASSERT_EQ(robot.Setup("arm", kChannel, Setup_Mode::Virtual), 0);
  double angle = 0.0;
  const auto start = Clock::now();
  const int code = robot.get_angles(1, angle);
  const auto took = Clock::now() - start;
  EXPECT_EQ(code, row.expected);
  EXPECT_LE(took, kReplyTimeout + kLateness);
  if (row.expected == RobotEvents::kReplyTimeout) {
    EXPECT_GE(took, kReplyTimeout);
  }
  striking.wait();
  EXPECT_TRUE(controller->Struck());

  const double cpuBefore = tavtest::ProcessCpuSeconds();
  std::this_thread::sleep_for(1s);  // the window in which a runaway thread would show itself
  const double cpuAfter = tavtest::ProcessCpuSeconds() - cpuBefore;
  EXPECT_LT(cpuAfter, kIdleCpuSeconds);
  const std::vector<std::string> logged = LinesSince(linesBefore);
  EXPECT_LT(logged.size(), kMaxLogLines);
  std::printf("%s: %d after %.1f ms, %.2f ms of CPU in the next second, %zu log lines\n", row.name.c_str(), code,
              std::chrono::duration<double, std::milli>(took).count(), cpuAfter * 1000.0, logged.size());
  if (!row.logged.empty()) {
    EXPECT_TRUE(AnyContains(logged, row.logged)) << "no line says \"" << row.logged << "\"";
  }

  // A wait that ran out leaves the session usable; any other fault fails it for good.
  const bool failsSession = row.expected != 0 && row.expected != RobotEvents::kReplyTimeout;
  const auto again = Clock::now();
  EXPECT_EQ(robot.get_angles(1, angle), failsSession ? row.expected : 0);
  if (failsSession) {
    EXPECT_LT(Clock::now() - again, kLateness) << "a failed session answers at once";
  }
  EXPECT_EQ(robot.RobotLogout(), 0);

  Robot fresh;
  ASSERT_EQ(fresh.RobotLogin("127.0.0.1", PortArg(healthy.Port())), 0);
  EXPECT_EQ(fresh.Setup("arm", kChannel, Setup_Mode::Virtual), 0);
  EXPECT_EQ(fresh.get_angles(1, angle), 0);
  EXPECT_EQ(fresh.RobotLogout(), 0);
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultMatrixTest, ::testing::ValuesIn(kRows),
                         [](const ::testing::TestParamInfo<Row>& row) { return row.param.name; });

}  // namespace
