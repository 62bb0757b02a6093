#include <chrono>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "common/RobotEvent.h"
#include "robot/RobotFixture.h"

namespace {

const std::string kP = "[1.000000,2.000000,3.000000,[0.000000,0.000000,0.000000]]";
const _Pose kPose{1.0, 2.0, 3.0, 0.0, 0.0, 0.0};
const int kIds[2] = {1, 2};
const int kSignals[2] = {0, 1};
const double kReals[3] = {0.0, 90.0, -0.5};
const Setup_Param kChannel{"can0", "can", "canopen", 1, 500000};

struct WireCase {
  std::function<int()> call;
  std::string wireName;
  std::string parameters;  // the parameter elements, in key order
  int checksum;
};

class RobotCommandTest : public LoggedInRobotTest {
protected:
  // One call of every command family and its exact text.
  std::vector<WireCase> EveryCommand() {
    Robot& r = robot;
    const std::string unitAcceleration = "<acceleration>1.000000</acceleration>";
    return {
        {[&] { return r.recover(); }, "recover", "", 758},
        {[&] { return r.stop(); }, "stop", "", 454},
        {[&] { return r.calibrate(); }, "calibrate", "", 935},
        {[&] { return r.reset(); }, "reset", "", 547},
        {[&] { return r.Shutdown(); }, "finalize", "", 850},
        {[&] { return r.move_to_angles(3, 10.0, 0.5f, 0.25f, Relative_Mode::Relative); },
         "move_to_angles",
         R"(<acceleration>0.250000</acceleration><block>0</block><motor_ids>["3"]</motor_ids>)"
         "<position>[10.000000]</position><relative>1</relative><velocity>0.500000</velocity>",
         3281},
        {[&] { return r.moveL(3, path, kReals, 1.0f, 1.0f, 0.0f, Traj_Close_Mode::Closed); },
         "moveL",
         unitAcceleration + "<closed>1</closed><interval>0.000000</interval><points>[" + kP + "," +
             kP + "," + kP + "]</points><radius>[0.000000]</radius><velocity>1.000000</velocity>",
         11208},
        {[&] { return r.moveL(2, path, kReals, 1.0f, 1.0f, 0.0f, Traj_Close_Mode::Open); }, "moveL",
         unitAcceleration + "<closed>0</closed><interval>0.000000</interval><points>[" + kP + "," +
             kP + "]</points><radius>[0.000000,90.000000]</radius><velocity>1.000000</velocity>",
         8760},
        {[&] { return r.moveP(0, path, 1.0f, 1.0f, 0.0f, Traj_Close_Mode::Closed); }, "moveP",
         unitAcceleration + "<closed>1</closed><interval>0.000000</interval><points>[]</points>"
                            "<velocity>1.000000</velocity>",
         1900},
        {[&] { return r.move_to_pose(kPose, 0.5f, 0.25f, Relative_Mode::Absolute); },
         "move_to_position",
         "<acceleration>0.250000</acceleration><block>0</block><position>" + kP +
             "</position><relative>0</relative><velocity>0.500000</velocity>",
         5499},
        {[&] { return r.hold(4); }, "hold", R"(<motor_ids>["4"]</motor_ids>)", 727},
        {[&] { return r.release(2, kIds); }, "release", R"(<motor_ids>["1","2"]</motor_ids>)",
         1200},
        {[&] { return r.wait_for_motors(6); }, "wait_for_motors", R"(<motor_ids>["6"]</motor_ids>)",
         1936},
        {[&] { return r.set_output(2, kIds, kSignals); }, "set_output",
         R"(<motor_ids>["1","2"]</motor_ids><signal>{"1": 0,"2": 1}</signal>)", 2383},
        {[&] { return r.set_EOAT_action("gripper", "open"); }, "set_EOAT_action",
         "<action>open</action><name>gripper</name>", 2652},
        {[&] { return r.get_current(2, value); }, "get_current", R"(<motor_ids>["2"]</motor_ids>)",
         1488},
        {[&] { return r.get_current(2, kIds, values); }, "get_angles",
         R"(<motor_ids>["1","2"]</motor_ids>)", 1512},
        {[&] { return r.get_input(2, kIds, inputs); }, "get_input",
         R"(<motor_ids>["1","2"]</motor_ids>)", 1438},
        {[&] { return r.get_pose(pose); }, "get_position", "", 1300},
        {[&] { return r.inverse(kPose, values); }, "inverse", "<position>" + kP + "</position>",
         3650},
    };
  }

  // The exact text of the command `message`, from its parameter elements and checksum.
  std::string CommandText(const tavsim::ClientMessage& message, const std::string& parameters,
                          int checksum) {
    std::string clientId;
    robot.GetClientIP(clientId);
    const std::string block =
        parameters.empty() ? "<parameter />" : "<parameter>" + parameters + "</parameter>";
    return "<root><head><timestamp>" + message.timestamp + "</timestamp><ClientID>" + clientId +
           "</ClientID></head><function>" + block + "<name>" + message.functionName +
           "</name></function><tail><checksum>" + std::to_string(checksum) +
           "</checksum></tail></root>";
  }

  _Pose path[3] = {kPose, kPose, kPose};
  _Pose pose;
  double value = 0.0;
  double values[8] = {};
  int inputs[8] = {};
};

TEST_F(RobotCommandTest, LoginIntroducesTheClient) {
  EXPECT_EQ(hello.raw,
            "<root><head><identifier>ClientInfo</identifier></head><ClientInfo><version>0.1.0"
            "</version><system>windows</system><language>CPP</language></ClientInfo><tail>"
            "<checksum>1243</checksum></tail></root>");
}

TEST_F(RobotCommandTest, EveryCommandSendsItsExactText) {
  for (const WireCase& wire : EveryCommand()) {
    SCOPED_TRACE(wire.wireName);
    ASSERT_TRUE(Ask(wire.call, wire.wireName, "[1, 2, 3, 4, 5, 6]"));
    EXPECT_EQ(sent.raw, CommandText(sent, wire.parameters, wire.checksum));
  }
}

TEST_F(RobotCommandTest, BeforeAnySetupTheAllMotorFormsNameNoMotor) {
  size_t count = 99;
  int ids[16] = {};
  EXPECT_EQ(robot.get_motor_ids(count, ids), 0);
  EXPECT_EQ(count, 0u);
  EXPECT_EQ(Exchange([&] { return robot.hold(); }, "hold"), 0);
  EXPECT_EQ(sent.raw, CommandText(sent, "<motor_ids>[]</motor_ids>", 607));
  Ask([&] { return robot.forward(kReals, pose); }, "forward", "[1,2,3,4,5,6]");
  EXPECT_EQ(sent.raw, CommandText(sent, "<angles>[]</angles>", 941));
}

TEST_F(RobotCommandTest, SetupSendsTheChannelThenAsksForTheMotorIds) {
  ASSERT_TRUE(SetUpWithMotors("[1]"));
  EXPECT_EQ(setupRequest.raw,
            CommandText(setupRequest,
                        R"(<name>arm</name><parameters>{"channel_name": "can0",)"
                        R"("channel_type": "can","protocol": "canopen","host_id": 1,)"
                        R"("baud_rate": 500000}</parameters><virtual>1</virtual>)",
                        9125));
  EXPECT_EQ(sent.raw, CommandText(sent, "", 1391));
}

// The ids are 1, 2, ... for as long as each number's text occurs in the reply: "10" holds the
// 1, and 8 is not one of them, as 7 is missing.
TEST_F(RobotCommandTest, SetupLearnsTheMotorIdsThatTheAllMotorFormsUse) {
  ASSERT_TRUE(SetUpWithMotors("[10, 2, 3, 4, 5, 6, 8]"));
  Ask([&] { return robot.get_current(values); }, "get_current", "[0.5]");
  EXPECT_EQ(sent.parameters["motor_ids"], R"(["1","2","3","4","5","6"])");
  const double angles[6] = {0.0, 0.5, 1.0, 1.5, 2.0, 2.5};
  Ask([&] { return robot.forward(angles, pose); }, "forward", "[1,2,3,4,5,6]");
  EXPECT_EQ(sent.parameters["angles"], "[0.000000,0.500000,1.000000,1.500000,2.000000,2.500000]");
}

// The controller may be another one after a new login: its motors are learned at its Setup.
TEST_F(RobotCommandTest, ANewLoginForgetsTheMotorIdsUntilTheNextSetup) {
  ASSERT_TRUE(SetUpWithMotors("[1, 2]"));
  ASSERT_TRUE(LogIn(robot));
  std::vector<int> ids{99};
  EXPECT_EQ(robot.get_motor_ids(ids), 0);
  EXPECT_EQ(ids, std::vector<int>{});
  ASSERT_TRUE(SetUpWithMotors("[1, 2, 3]"));
  EXPECT_EQ(robot.get_motor_ids(ids), 0);
  EXPECT_EQ(ids, (std::vector<int>{1, 2, 3}));
}

TEST_F(RobotCommandTest, LogoutClosesTheConnection) {
  EXPECT_EQ(robot.RobotLogout(), 0);
  EXPECT_TRUE(controller.ExpectClientClosed());
}

// A closed path blends at n - 2 corners, so fewer than 2 points have no radius count: refused,
// and nothing is sent, so the next message the controller sees is the command after them.
TEST_F(RobotCommandTest, AClosedLinePathOfFewerThanTwoPointsIsRefusedAndNotSent) {
  for (const unsigned long n : {0ul, 1ul}) {
    EXPECT_EQ(robot.moveL(n, path, kReals, 1.0f, 1.0f, 0.0f, Traj_Close_Mode::Closed),
              RobotEvents::kInvalidArgument)
        << n << " points";
  }
  EXPECT_EQ(Exchange([&] { return robot.stop(); }, "stop"), 0);
}

// Null is refused before anything is formatted or sent. Nothing is connected here, so any other
// code would show that the call went further. Null arrays whose count is 0 read nothing and pass.
TEST(RobotArgumentTest, NullPointersAreRefusedWithACode) {
  Robot r;
  std::string out;
  std::vector<double> all;
  double values[2];
  _Pose path[1] = {kPose};
  const Setup_Param noName{nullptr, "can", "canopen", 1, 500000};
  const Relative_Mode absolute = Relative_Mode::Absolute;
  const Traj_Close_Mode open = Traj_Close_Mode::Open;
  const std::vector<std::pair<const char*, std::function<int()>>> calls{
      {"Setup", [&] { return r.Setup(nullptr, kChannel, Setup_Mode::Real); }},
      {"Setup channel", [&] { return r.Setup("arm", noName, Setup_Mode::Real); }},
      {"move_to_angles ids", [&] { return r.move_to_angles(2, nullptr, kReals, 1, 1, absolute); }},
      {"move_to_angles positions",
       [&] { return r.move_to_angles(2, kIds, nullptr, 1, 1, absolute); }},
      {"moveJ", [&] { return r.moveJ(1, nullptr, 1, 1, 0, open); }},
      {"moveP", [&] { return r.moveP(1, nullptr, 1, 1, 0, open); }},
      {"moveL radius", [&] { return r.moveL(1, path, nullptr, 1, 1, 0, open); }},
      {"hold", [&] { return r.hold(2, nullptr); }},
      {"release", [&] { return r.release(2, nullptr); }},
      {"wait_for_motors", [&] { return r.wait_for_motors(2, nullptr); }},
      {"set_output", [&] { return r.set_output(2, kIds, nullptr); }},
      {"set_EOAT_action name", [&] { return r.set_EOAT_action(nullptr, "open"); }},
      {"set_EOAT_action action", [&] { return r.set_EOAT_action("gripper", nullptr); }},
      {"get_current ids", [&] { return r.get_current(2, nullptr, values); }},
      {"get_current values", [&] { return r.get_current(2, kIds, static_cast<double*>(nullptr)); }},
      {"get_velocity ids", [&] { return r.get_velocity(2, nullptr, all); }},
      {"to_SetupParamString", [&] { return r.to_SetupParamString(noName, out); }},
      {"to_IdString", [&] { return r.to_IdString(2, nullptr, out); }},
      {"to_IntString", [&] { return r.to_IntString(2, nullptr, out); }},
      {"to_SignalString", [&] { return r.to_SignalString(2, kIds, nullptr, out); }},
      {"to_DoubleString", [&] { return r.to_DoubleString(2, nullptr, out); }},
      {"to_PointString", [&] { return r.to_PointString(1, nullptr, out); }},
  };
  EXPECT_EQ(r.RobotLogin(nullptr, 1), RobotEvents::kSocketSetupFailed);
  for (const auto& [name, call] : calls) {
    EXPECT_EQ(call(), RobotEvents::kInvalidArgument) << name;
  }
  EXPECT_EQ(r.to_IdString(0, nullptr, out), 0);
  EXPECT_EQ(out, "[]");
}

}  // namespace
