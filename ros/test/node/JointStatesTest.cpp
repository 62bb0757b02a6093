#include <geometry_msgs/PoseStamped.h>
#include <std_msgs/UInt8MultiArray.h>

#include <algorithm>
#include <cmath>

#include "DriverFixture.h"

namespace tavrostest {
namespace {

using std::chrono::seconds;

TEST_F(DriverTest, PublishesTheArmsStateInRadiansAtTheRequestedRate) {
  Recorder<geometry_msgs::PoseStamped> poses("/arm/tool_pose");
  Recorder<std_msgs::UInt8MultiArray> inputs("/arm/digital_inputs");
  StartSimulator();
  StartDriver(simulator->Port(), {"_publish_rate:=125"});
  ConnectRobot();
  const double targets[] = {10.0, -20.0, 30.0, -40.0, 50.0, -60.0};
  const int ids[] = {1, 2, 3, 4, 5, 6};
  ASSERT_EQ(robot.move_to_angles(6, ids, targets, 180.0f, 1000.0f, Relative_Mode::Absolute), 0);
  ASSERT_EQ(robot.wait_for_motors(), 0);

  jointStates->Clear();
  ASSERT_TRUE(jointStates->WaitFor(60, seconds(10)));
  const std::vector<double> expected = Angles();
  const auto messages = jointStates->Messages();
  const auto& last = *messages.back();
  EXPECT_EQ(last.name, JointNames());
  ASSERT_EQ(last.position.size(), 6U);
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_NEAR(last.position[i], expected[i], 1e-6) << last.name[i];
    EXPECT_NEAR(last.position[i], Radians(targets[i]), 1e-4) << last.name[i];
    EXPECT_NEAR(last.velocity.at(i), 0.0, 1e-9) << "the arm stands still";
  }
  EXPECT_EQ(last.effort.size(), 6U) << "motor currents";

  // The stamps are the sampling instants: 8 ms apart at 125 Hz.
  std::vector<double> gaps;
  for (std::size_t i = 1; i < messages.size(); ++i) {
    gaps.push_back((messages[i]->header.stamp - messages[i - 1]->header.stamp).toSec());
  }
  const auto median = gaps.begin() + static_cast<std::ptrdiff_t>(gaps.size() / 2);
  std::nth_element(gaps.begin(), median, gaps.end());
  EXPECT_NEAR(*median, 0.008, 0.002);

  ASSERT_TRUE(poses.WaitFor(1, seconds(5)));
  _Pose pose;
  ASSERT_EQ(robot.get_pose(pose), 0);
  const auto toolPose = poses.Last();
  ASSERT_TRUE(toolPose);
  EXPECT_EQ(toolPose->header.frame_id, std::string(kPrefix) + "base_link");
  EXPECT_NEAR(toolPose->pose.position.x, pose.x, 1e-6);
  EXPECT_NEAR(toolPose->pose.position.y, pose.y, 1e-6);
  EXPECT_NEAR(toolPose->pose.position.z, pose.z, 1e-6);

  ASSERT_TRUE(inputs.WaitFor(1, seconds(5)));
  EXPECT_EQ(inputs.Last()->data.size(), 10U);
}

}  // namespace
}  // namespace tavrostest
