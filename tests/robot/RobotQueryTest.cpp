#include <future>
#include <stdexcept>
#include <string>
#include <vector>

#include "robot/RobotFixture.h"

using RobotQueryTest = RobotTest;

constexpr double kUntouched = -77.0;

TEST_F(RobotQueryTest, RealsPassThroughSinglePrecisionAndTheReplyDecidesTheCount) {
  double value = kUntouched;
  EXPECT_EQ(Ask([&] { return robot.get_angles(1, value); }, "get_angles", "[0.1]"), 0);
  EXPECT_EQ(value, static_cast<double>(0.1f));
  const int ids[2] = {1, 2};
  double values[4] = {kUntouched, kUntouched, kUntouched, kUntouched};
  EXPECT_EQ(Ask([&] { return robot.get_velocity(2, ids, values); }, "get_velocity", "[1.5, 2.5, 3.5]"), 0);
  EXPECT_EQ(std::vector<double>(values, values + 4), (std::vector<double>{1.5, 2.5, 3.5, kUntouched}));
  int input = -1;
  EXPECT_EQ(Ask([&] { return robot.get_input(5, input); }, "get_input", "[1]"), 0);
  EXPECT_EQ(input, 1);
  _Pose pose;
  EXPECT_EQ(Ask([&] { return robot.get_pose(pose); }, "get_position", "[0.25, -0.5, 1, [0.1, 0, 3.5], 9]"), 0);
  EXPECT_EQ(pose.y, -0.5);
  EXPECT_EQ(pose.roll, static_cast<double>(0.1f));
  EXPECT_EQ(pose.yaw, 3.5);
}

TEST_F(RobotQueryTest, ARefusalIsReturnedWithTheOutputsUntouched) {
  double value = kUntouched;
  EXPECT_EQ(Ask([&] { return robot.get_current(3, value); }, "get_current", "[2.5]", "1003"), 1003);
  _Pose pose{kUntouched, 0, 0, 0, 0, 0};
  EXPECT_EQ(Ask([&] { return robot.get_pose(pose); }, "get_position", "[1,2,3,4,5,6]", "-3"), -3);
  EXPECT_EQ(value, kUntouched);
  EXPECT_EQ(pose.x, kUntouched);
}

TEST_F(RobotQueryTest, AValueThatDoesNotParseThrowsToTheCaller) {
  double value = kUntouched;
  int inputs[2] = {-1, -1};
  _Pose pose;
  EXPECT_THROW(Ask([&] { return robot.get_velocity(1, value); }, "get_velocity", "[]"), std::invalid_argument);
  EXPECT_THROW(Ask([&] { return robot.get_angles(1, value); }, "get_angles", "[1e40]"), std::out_of_range);
  EXPECT_THROW(Ask([&] { return robot.get_input(inputs); }, "get_input", "[1, x]"), std::invalid_argument);
  EXPECT_THROW(Ask([&] { return robot.get_pose(pose); }, "get_position", "[1,2,3,4,5]"), std::out_of_range);
  EXPECT_EQ(value, kUntouched);
  EXPECT_EQ(inputs[0], -1) << "nothing is stored unless every value parses";
  EXPECT_EQ(Ask([&] { return robot.get_angles(1, value); }, "get_angles", "[4]"), 0);
  EXPECT_EQ(value, 4.0) << "the session goes on";
}

// Two queries in flight: each takes only the reply filed under its own name and counter value.
TEST_F(RobotQueryTest, RepliesAreMatchedByName) {
  double velocity = kUntouched;
  double angle = kUntouched;
  tavsim::ClientMessage first;
  std::future<int> velocityQuery = Start([&] { return robot.get_velocity(1, velocity); });
  ASSERT_TRUE(Step(controller.ReceiveCommand("get_velocity", first)));
  std::future<int> angleQuery = Start([&] { return robot.get_angles(1, angle); });
  ASSERT_TRUE(Step(controller.ReceiveCommand("get_angles", sent)) &&
              Step(controller.Reply(sent, "0", {{"result1", "2"}})));
  EXPECT_EQ(angleQuery.get(), 0);
  EXPECT_EQ(velocity, kUntouched);
  ASSERT_TRUE(Step(controller.Reply(first, "0", {{"result1", "1"}})));
  EXPECT_EQ(velocityQuery.get(), 0);
  EXPECT_EQ(angle, 2.0);
  EXPECT_EQ(velocity, 1.0);
}

// The forms no command sends, and the splitter's edge cases.
TEST(RobotFormatterTest, UnsentFormsAndSplitting) {
  Robot robot;
  std::string text = "replaced";
  const int values[3] = {1, 0, 1};
  robot.to_IntString(3, values, text);
  EXPECT_EQ(text, "[1,0,1]");
  robot.to_DoubleString(-0.5, text);
  EXPECT_EQ(text, "[-0.500000]");
  std::vector<std::string> pieces{"kept"};
  robot.SplitString("1,,2,", pieces, ",");
  robot.SplitString("", pieces, ",");
  robot.SplitString(",7", pieces, ",");
  robot.SplitString("8", pieces, "");
  EXPECT_EQ(pieces, (std::vector<std::string>{"kept", "1", "", "2", "", "7", "8"}));
}
