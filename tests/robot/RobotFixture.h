#ifndef TAVTEST_ROBOT_ROBOTFIXTURE_H
#define TAVTEST_ROBOT_ROBOTFIXTURE_H

#include <gtest/gtest.h>

#include <future>
#include <string>

#include "Robot.h"
#include "common/TavUtils.h"
#include "support/ReplyTimeout.h"
#include "support/ScriptedController.h"

// A Robot facing a scripted controller on 127.0.0.1. Robot calls block until their reply, so
// each runs on its own thread while the test plays the controller's part.
class RobotTest : public ::testing::Test {
protected:
  using Results = tavtest::ScriptedController::Results;

  RobotTest() { robot.SetReplyTimeout(tavtest::kReplyTimeoutSeconds); }

  template <typename Call>
  static std::future<int> Start(Call call) {
    return std::async(std::launch::async, call);
  }

  // A failed step closes the controller's side, so that a call waiting for its reply returns.
  bool Step(const ::testing::AssertionResult& step) {
    EXPECT_TRUE(step);
    if (!step) {
      controller.Close();
    }
    return static_cast<bool>(step);
  }

  // Logs `target` in, the controller taking its ClientInfo into `hello`.
  ::testing::AssertionResult LogIn(Robot& target) {
    std::future<int> login =
        Start([&] { return target.RobotLogin("127.0.0.1", controller.PortArg()); });
    if (Step(controller.Accept()) && Step(controller.ReceiveClientInfo(hello))) {
      Step(controller.SendConnResult());
    }
    const int code = login.get();
    return code == 0 ? ::testing::AssertionSuccess()
                     : ::testing::AssertionFailure() << "login returned " << code;
  }

  // Runs `call` while the controller takes the command `wireName` into `sent` and answers it.
  // The command must draw exactly one request counter value and carry it.
  template <typename Call>
  int Exchange(Call call, const std::string& wireName, const std::string& state = "0",
               const Results& results = {}) {
    const int before = GetTimeStamp();
    std::future<int> result = Start(call);
    if (Step(controller.ReceiveCommand(wireName, sent))) {
      Step(controller.Reply(sent, state, results));
    }
    const int code = result.get();
    EXPECT_EQ(sent.timestamp, std::to_string(before + 1));
    EXPECT_EQ(GetTimeStamp(), before + 2) << "one counter value per command";
    return code;
  }

  // A query answered with state `state` and the result list `result1`: it returns the state.
  // False otherwise, so that a test can stop before it reads outputs that were never written.
  template <typename Call>
  bool Ask(Call call, const std::string& wireName, const std::string& result1,
           const std::string& state = "0") {
    const int code = Exchange(call, wireName, state, {{"result1", result1}});
    EXPECT_EQ(code, std::stoi(state)) << wireName;
    return code == std::stoi(state);
  }

  // Runs Setup while the controller accepts the channel and answers the motor discovery with
  // `ids`; `sent` then holds the discovery request.
  ::testing::AssertionResult SetUpWithMotors(const std::string& ids) {
    const Setup_Param channel{"can0", "can", "canopen", 1, 500000};
    std::future<int> setup =
        Start([&] { return robot.Setup("arm", channel, Setup_Mode::Virtual); });
    if (Step(controller.ReceiveCommand("Robot", setupRequest)) &&
        Step(controller.Reply(setupRequest)) &&
        Step(controller.ReceiveCommand("get_motor_ids", sent))) {
      Step(controller.Reply(sent, "0", {{"result1", ids}}));
    }
    const int code = setup.get();
    return code == 0 ? ::testing::AssertionSuccess()
                     : ::testing::AssertionFailure() << "Setup returned " << code;
  }

  tavtest::ScriptedController controller;
  Robot robot;
  tavsim::ClientMessage hello;
  tavsim::ClientMessage sent;
  tavsim::ClientMessage setupRequest;
};

// The same, with the Robot logged in.
class LoggedInRobotTest : public RobotTest {
protected:
  void SetUp() override { ASSERT_TRUE(LogIn(robot)); }
};

#endif
