#include <std_msgs/UInt8MultiArray.h>
#include <std_srvs/Trigger.h>
#include <tavclient_ros/Forward.h>
#include <tavclient_ros/Inverse.h>
#include <tavclient_ros/SetOutput.h>
#include <tavclient_ros/ToolAction.h>

#include "DriverFixture.h"

namespace tavrostest {
namespace {

using std::chrono::seconds;

class ServicesTest : public DriverTest {
protected:
  void SetUp() override {
    DriverTest::SetUp();
    StartSimulator();
    StartDriver(simulator->Port());
    ConnectRobot();
    ASSERT_TRUE(ros::service::waitForService("/arm/inverse", ros::Duration(10)));
    ASSERT_TRUE(WaitConnected(true, seconds(10)));
  }

  static std_srvs::Trigger Trigger(const std::string& name) {
    std_srvs::Trigger trigger;
    EXPECT_TRUE(ros::service::call("/arm/" + name, trigger)) << name;
    return trigger;
  }

  static std::string Refusal(int code) {
    return std::to_string(code) + " " + Robot::EventText(code);
  }
};

TEST_F(ServicesTest, TriggersRunTheControllersCommands) {
  EXPECT_TRUE(Trigger("stop").response.success);
  EXPECT_EQ(robot.move_to_angles(1, 5.0, 30.0f, 60.0f, Relative_Mode::Absolute), 2001051)
      << "stopped";
  EXPECT_TRUE(Trigger("recover").response.success);
  EXPECT_EQ(robot.move_to_angles(1, 5.0, 30.0f, 60.0f, Relative_Mode::Absolute), 0);
  ASSERT_EQ(robot.wait_for_motors(), 0);

  EXPECT_TRUE(Trigger("release").response.success);
  EXPECT_EQ(robot.move_to_angles(1, 6.0, 30.0f, 60.0f, Relative_Mode::Absolute), 2001061)
      << "released";
  EXPECT_TRUE(Trigger("hold").response.success);
  EXPECT_TRUE(Trigger("calibrate").response.success);
  EXPECT_TRUE(Trigger("reset").response.success);

  // A refusal comes back with its code and text.
  ASSERT_EQ(robot.move_to_angles(1, 90.0, 10.0f, 60.0f, Relative_Mode::Absolute), 0);
  const std_srvs::Trigger calibrate = Trigger("calibrate");
  EXPECT_FALSE(calibrate.response.success);
  EXPECT_EQ(calibrate.response.message, Refusal(2001051)) << "only at rest";
}

TEST_F(ServicesTest, OutputsAndToolsReachTheInputs) {
  Recorder<std_msgs::UInt8MultiArray> inputs("/arm/digital_inputs");
  Recorder<std_msgs::UInt8MultiArray> outputs("/arm/digital_outputs");
  tavclient_ros::SetOutput set;
  set.request.id = 3;
  set.request.signal = 1;
  ASSERT_TRUE(ros::service::call("/arm/set_output", set));
  EXPECT_TRUE(set.response.success) << set.response.message;
  EXPECT_TRUE(inputs.WaitUntil(seconds(5), [](const std_msgs::UInt8MultiArray& message) {
    return message.data.size() == 10 && message.data[2] == 1;
  })) << "output 3 is wired back to input 3";
  EXPECT_TRUE(outputs.WaitUntil(seconds(5), [](const std_msgs::UInt8MultiArray& message) {
    return message.data == std::vector<std::uint8_t>{0, 0, 1, 0, 0, 0, 0, 0};
  }));

  set.request.signal = 2;
  ASSERT_TRUE(ros::service::call("/arm/set_output", set));
  EXPECT_FALSE(set.response.success);
  EXPECT_EQ(set.response.message, Refusal(2001021));

  tavclient_ros::ToolAction tool;
  tool.request.name = "gripper";
  tool.request.action = "close";
  ASSERT_TRUE(ros::service::call("/arm/tool_action", tool));
  EXPECT_TRUE(tool.response.success) << tool.response.message;
  EXPECT_TRUE(inputs.WaitUntil(seconds(5), [](const std_msgs::UInt8MultiArray& message) {
    return message.data.size() == 10 && message.data[8] == 1;
  })) << "input 9 reads the gripper closed";
  tool.request.name = "laser";
  ASSERT_TRUE(ros::service::call("/arm/tool_action", tool));
  EXPECT_FALSE(tool.response.success);
  EXPECT_EQ(tool.response.message, Refusal(2001071));

  outputs.Clear();
  EXPECT_TRUE(Trigger("reset").response.success);
  EXPECT_TRUE(outputs.WaitUntil(seconds(5), [](const std_msgs::UInt8MultiArray& message) {
    return message.data == std::vector<std::uint8_t>(8, 0);
  })) << "a reset clears the outputs";
}

TEST_F(ServicesTest, ForwardAndInverseInRadians) {
  const double degrees[] = {10.0, -30.0, 60.0, 15.0, 45.0, -20.0};
  _Pose expected;
  ASSERT_EQ(robot.forward(degrees, expected), 0);

  tavclient_ros::Forward forward;
  for (double value : degrees) {
    forward.request.positions.push_back(Radians(value));
  }
  ASSERT_TRUE(ros::service::call("/arm/forward", forward));
  ASSERT_TRUE(forward.response.success) << forward.response.message;
  const auto& pose = forward.response.pose;
  EXPECT_EQ(pose.header.frame_id, std::string(kPrefix) + "base_link");
  EXPECT_NEAR(pose.pose.position.x, expected.x, 1e-6);
  EXPECT_NEAR(pose.pose.position.y, expected.y, 1e-6);
  EXPECT_NEAR(pose.pose.position.z, expected.z, 1e-6);

  // The quaternion turns back into the controller's angles: the inverse of that pose is the
  // pose's own joint angles.
  tavclient_ros::Inverse inverse;
  inverse.request.pose = pose.pose;
  ASSERT_TRUE(ros::service::call("/arm/inverse", inverse));
  ASSERT_TRUE(inverse.response.success) << inverse.response.message;
  EXPECT_EQ(inverse.response.names, JointNames());
  std::vector<double> solved;
  ASSERT_EQ(robot.inverse(expected, solved), 0);
  ASSERT_EQ(inverse.response.positions.size(), 6U);
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_NEAR(inverse.response.positions[i], Radians(solved[i]), 1e-5);
  }

  forward.request.positions.pop_back();
  ASSERT_TRUE(ros::service::call("/arm/forward", forward));
  EXPECT_FALSE(forward.response.success) << "one position short";
  inverse.request.pose.position.x = 10.0;
  ASSERT_TRUE(ros::service::call("/arm/inverse", inverse));
  EXPECT_FALSE(inverse.response.success);
  EXPECT_EQ(inverse.response.message, Refusal(2001041));
}

}  // namespace
}  // namespace tavrostest
