#include <gtest/gtest.h>

#include <future>
#include <vector>

#include "Robot.h"
#include "support/ScriptedController.h"

namespace {

struct ApplicationRun {
  std::vector<int> results;
  double angles[3] = {};
  _Pose pose;
};

// An application from construction to destruction, forgetting nothing.
ApplicationRun RunApplication(short port) {
  ApplicationRun run;
  Robot robot;
  run.results = {robot.RobotLogin("127.0.0.1", port),
                 robot.Setup("arm", {"can0", "can", "canopen", 1, 500000}, Setup_Mode::Virtual),
                 robot.move_to_angles(2, 0.5, 1.0f, 1.0f, Relative_Mode::Absolute),
                 robot.wait_for_motors(),
                 robot.get_angles(run.angles),
                 robot.get_pose(run.pose),
                 robot.Shutdown(),
                 robot.RobotLogout()};
  return run;
}

TEST(RobotApplicationTest, AnApplicationRunsFromLoginToDestruction) {
  tavtest::ScriptedController controller;
  std::future<ApplicationRun> application = std::async(std::launch::async, RunApplication, controller.PortArg());
  const auto step = [](const ::testing::AssertionResult& result) {
    EXPECT_TRUE(result);
    return static_cast<bool>(result);
  };
  tavsim::ClientMessage m;
  const bool played =
      step(controller.Accept()) && step(controller.ReceiveClientInfo(m)) && step(controller.SendConnResult()) &&
      step(controller.ReceiveCommand("Robot", m)) && step(controller.Reply(m)) &&
      step(controller.ReceiveCommand("get_motor_ids", m)) && step(controller.Reply(m, "0", {{"result1", "[1,2,3]"}})) &&
      step(controller.ReceiveCommand("move_to_angles", m)) && step(controller.Reply(m)) &&
      step(controller.ReceiveCommand("wait_for_motors", m)) && m.parameters["motor_ids"] == R"(["1","2","3"])" &&
      step(controller.Reply(m)) && step(controller.ReceiveCommand("get_angles", m)) &&
      step(controller.Reply(m, "0", {{"result1", "[0.5, -0.5, 0]"}})) &&
      step(controller.ReceiveCommand("get_position", m)) &&
      step(controller.Reply(m, "0", {{"result1", "[0.25, 0, 0.5, [0, 1.5, 0]]"}})) &&
      step(controller.ReceiveCommand("finalize", m)) && step(controller.Reply(m)) && step(controller.ExpectClientClosed());
  EXPECT_TRUE(played) << "stopped at: " << m.raw;
  if (!played) controller.Close();  // ends the application's wait

  const ApplicationRun run = application.get();
  EXPECT_EQ(run.results, std::vector<int>(8, 0));
  EXPECT_EQ(run.angles[1], -0.5);
  EXPECT_EQ(run.pose.pitch, 1.5);
}

}  // namespace
