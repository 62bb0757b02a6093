// Every fault a controller can do to a call that waits, as an application lives through it:
// the call returns its code in time, nothing spins or floods the log afterwards, and a new
// Robot in the same process works.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <chrono>
#include <cstdio>
#include <functional>
#include <future>
#include <memory>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "Robot.h"
#include "SimulatorProcess.h"
#include "common/RobotEvent.h"
#include "common/TavLogger.h"
#include "server/SimulatorServer.h"
#include "support/ProcessProbe.h"
#include "support/ReplyTimeout.h"
#include "support/ScriptedController.h"
#include "support/TemporaryHome.h"

namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using tavsim::Fault;
using ::testing::Contains;
using ::testing::HasSubstr;

const Setup_Param kChannel{"can0", "can", "canopen", 1, 500000};
// The command whose reply the faults strike: the session's call waits on it.
const std::string kStruck = "get_angles";
constexpr std::chrono::seconds kReplyTimeout{1};
// Past its time-out or its fault, a call has this long to return.
constexpr auto kLateness = 100ms;
// 1% of a core over the second after the fault.
constexpr double kIdleCpuSeconds = 0.01;
// A session's own lines (workers starting, login, set-up, the fault) stay well below this;
// a thread that retried or reported without end would write thousands.
constexpr std::size_t kMaxLogLines = 30;

// The controller end of one fault: a session logs in there, sets a robot up and calls kStruck,
// and the fault strikes while that call waits for its reply.
class FaultyController {
public:
  virtual ~FaultyController() = default;
  virtual std::uint16_t Port() const = 0;
  // Runs on a thread of its own from before the login until the fault has struck.
  virtual void Strike() {}
  // Whether the fault has struck: a call that succeeds proves nothing unless it did.
  virtual bool Struck() = 0;
};

// The in-process simulator with one fault rule.
class InjectingSimulator : public FaultyController {
public:
  explicit InjectingSimulator(const Fault& fault) { server.Faults().Add(fault); }
  std::uint16_t Port() const override { return server.Port(); }
  bool Struck() override { return server.Faults().Fired() == 1; }

private:
  tavsim::SimulatorServer server;
};

// The simulator program in a child process, killed with SIGKILL while the call waits.
class KilledSimulatorProcess : public FaultyController {
public:
  std::uint16_t Port() const override { return process.Port(); }
  // The drop rule holds the reply back; its line says the call is waiting.
  void Strike() override {
    ASSERT_TRUE(process.WaitForOutput("fault: drop", 5s)) << "the call never reached it";
    process.Kill();
    killed = true;
  }
  bool Struck() override { return killed; }

private:
  bool killed = false;
  tavtest::SimulatorProcess process{TAVSIM_PROGRAM,
                                    {"--port", "0", "--fault", "drop,on=" + kStruck}};
};

// A scripted controller that resets the connection (RST) while the call waits.
class ResettingController : public FaultyController {
public:
  std::uint16_t Port() const override { return controller.Port(); }
  void Strike() override {
    tavsim::ClientMessage message;
    ASSERT_TRUE(controller.Accept());
    ASSERT_TRUE(controller.ReceiveClientInfo(message));
    ASSERT_TRUE(controller.SendConnResult());
    ASSERT_TRUE(controller.ReceiveCommand("Robot", message));
    ASSERT_TRUE(controller.Reply(message));
    ASSERT_TRUE(controller.ReceiveCommand("get_motor_ids", message));
    ASSERT_TRUE(controller.Reply(message, "0", {{"result1", "[1]"}}));
    ASSERT_TRUE(controller.ReceiveCommand(kStruck, message));
    controller.Reset();
    reset = true;
  }
  bool Struck() override { return reset; }

private:
  bool reset = false;
  tavtest::ScriptedController controller;
};

using Factory = std::function<std::unique_ptr<FaultyController>()>;

Factory Injected(const Fault& fault) {
  return [fault] { return std::make_unique<InjectingSimulator>(fault); };
}

template <typename Controller>
std::unique_ptr<FaultyController> Make() {
  return std::make_unique<Controller>();
}

struct Row {
  std::string name;
  Factory controller;
  int expected;
  // What the library's log says of this fault, when it says something.
  std::string logged;
};

// Names the row in gtest's messages instead of dumping its bytes.
void PrintTo(const Row& row, std::ostream* out) { *out << row.name; }

const std::vector<Row> kRows{
    {"DelayWithinTimeout", Injected(Fault::DelayReply(kStruck, 300ms)), 0, ""},
    // The late reply comes during the idle second and is dropped.
    {"DelayBeyondTimeout", Injected(Fault::DelayReply(kStruck, 1500ms)), RobotEvents::kReplyTimeout,
     "nobody waits for"},
    {"Drop", Injected(Fault::DropReply(kStruck)), RobotEvents::kReplyTimeout, ""},
    {"ErrorMessage", Injected(Fault::ErrorInstead(kStruck, "2001091")), 2001091, "recv an error"},
    {"ErrorMessageWithCodeZero", Injected(Fault::ErrorInstead(kStruck, "0")),
     RobotEvents::kDecodeFailed, "recv an error"},
    {"Garbage", Injected(Fault::GarbageInstead(kStruck)), RobotEvents::kDecodeFailed,
     "unwrap failed"},
    {"CorruptChecksum", Injected(Fault::CorruptChecksum(kStruck)), RobotEvents::kDecodeFailed,
     "unwrap failed"},
    {"Split", Injected(Fault::SplitReply(kStruck, 4, 100ms)), 0, ""},
    {"Close", Injected(Fault::CloseConnection(kStruck)), RobotEvents::kReceiveFailed,
     "closed by peer"},
    {"ProcessKilled", Make<KilledSimulatorProcess>, RobotEvents::kReceiveFailed, "closed by peer"},
    {"ConnectionReset", Make<ResettingController>, RobotEvents::kReceiveFailed, "recv failed"},
};

short PortArg(std::uint16_t port) { return static_cast<short>(port); }

class FaultMatrixTest : public ::testing::TestWithParam<Row> {
protected:
  // The first Robot starts the library's logger, which the log count needs running.
  static void SetUpTestSuite() { Robot starter; }

  tavsim::SimulatorServer healthy;  // where a new Robot logs in after the fault
};

TEST_P(FaultMatrixTest, WaitingCallReturnsItsCodeInTimeAndANewRobotWorks) {
  const Row& row = GetParam();
  const std::string marker = "fault matrix row " + row.name;
  TavLogger::GetInstance().Info((marker + " begins").c_str());
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
  TavLogger::GetInstance().Info((marker + " ends").c_str());
  const std::vector<std::string> logged =
      tavtest::LinesBetween(::getenv("HOME"), marker + " begins", marker + " ends");
  EXPECT_LT(logged.size(), kMaxLogLines);
  std::printf("%s: %d after %.1f ms, %.2f ms of CPU in the next second, %zu log lines\n",
              row.name.c_str(), code, std::chrono::duration<double, std::milli>(took).count(),
              cpuAfter * 1000.0, logged.size());
  if (!row.logged.empty()) {
    EXPECT_THAT(logged, Contains(HasSubstr(row.logged)));
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
  ASSERT_EQ(fresh.SetReplyTimeout(tavtest::kReplyTimeoutSeconds), 0);
  ASSERT_EQ(fresh.RobotLogin("127.0.0.1", PortArg(healthy.Port())), 0);
  EXPECT_EQ(fresh.Setup("arm", kChannel, Setup_Mode::Virtual), 0);
  EXPECT_EQ(fresh.get_angles(1, angle), 0);
  EXPECT_EQ(fresh.RobotLogout(), 0);
}

INSTANTIATE_TEST_SUITE_P(Faults, FaultMatrixTest, ::testing::ValuesIn(kRows),
                         [](const ::testing::TestParamInfo<Row>& row) { return row.param.name; });

// Busy with a reply it holds back, a controller still answers heartbeats: a watchdog whose limit
// the wait outlasts leaves the session alone, and the command is sent once.
TEST(BusyControllerTest, AControllerThatAnswersHeartbeatsIsNotFailedWhileItWorks) {
  tavsim::SimulatorServer busy;
  busy.Faults().Add(Fault::DelayReply(kStruck, 1500ms));
  Robot robot;
  ASSERT_EQ(robot.SetReplyTimeout(tavtest::kReplyTimeoutSeconds), 0);
  ASSERT_EQ(robot.SetHeartbeat(0.05, 0.5), 0);
  ASSERT_EQ(robot.RobotLogin("127.0.0.1", PortArg(busy.Port())), 0);
  ASSERT_EQ(robot.Setup("arm", kChannel, Setup_Mode::Virtual), 0);
  double angle = 1.0;
  EXPECT_EQ(robot.get_angles(1, angle), 0);
  EXPECT_EQ(angle, 0.0);
  EXPECT_EQ(busy.Faults().Fired(), 1u);
}

}  // namespace
