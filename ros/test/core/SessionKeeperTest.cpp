#include "SessionKeeper.h"

#include <gtest/gtest.h>

#include <optional>

#include "server/SimulatorServer.h"
#include "support/Polling.h"

namespace tavdriver {
namespace {

using std::chrono::seconds;

// The keeper against an in-process simulator that comes, goes and comes back on one port.
TEST(SessionKeeper, ConnectsWhenTheControllerComesAndAfterEachRestart) {
  std::optional<tavsim::SimulatorServer> controller(std::in_place);
  const std::uint16_t port = controller->Port();
  controller.reset();

  SessionSettings settings;
  settings.port = port;
  settings.retryPeriod = 0.05;
  auto robot = std::make_shared<tavclient::SharedRobot>();
  std::atomic<int> changes{0};
  SessionKeeper keeper(robot, settings, [&](bool) { ++changes; });
  keeper.Start();
  ASSERT_TRUE(tavtest::PollUntil(seconds(5), [&] { return keeper.LastCode() == 1004021; }));
  EXPECT_FALSE(keeper.Connected());

  tavsim::ServerOptions options;
  options.port = port;
  controller.emplace(options);
  ASSERT_TRUE(tavtest::PollUntil(seconds(5), [&] { return keeper.Connected(); }));
  std::vector<int> ids;
  robot->Use([&](Robot& arm) { return arm.get_motor_ids(ids); });
  EXPECT_EQ(ids.size(), 6U) << "set up";

  controller.reset();
  ASSERT_TRUE(tavtest::PollUntil(seconds(5), [&] { return !keeper.Connected(); }));
  controller.emplace(options);
  ASSERT_TRUE(tavtest::PollUntil(seconds(5), [&] { return keeper.Connected(); }));
  EXPECT_EQ(keeper.Sessions(), 2U);
  EXPECT_EQ(changes.load(), 3);

  // A refusal is told but keeps the session; a lost connection ends it.
  keeper.Report(2001051);
  EXPECT_EQ(keeper.LastCode(), 2001051);
  EXPECT_TRUE(keeper.Connected());
  keeper.Stop();
  EXPECT_FALSE(keeper.Connected());
  EXPECT_EQ(robot->Use([](Robot& arm) { return arm.stop(); }), 1001011) << "logged out";
}

}  // namespace
}  // namespace tavdriver
