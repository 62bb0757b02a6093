#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "robot/RobotFixture.h"

using RobotQueryTest = LoggedInRobotTest;

constexpr double kUntouched = -77.0;

TEST_F(RobotQueryTest, RealsPassThroughSinglePrecision) {
  double value = kUntouched;
  Ask([&] { return robot.get_angles(1, value); }, "get_angles", "[0.1]");
  EXPECT_EQ(value, static_cast<double>(0.1f));
  int input = -1;
  Ask([&] { return robot.get_input(5, input); }, "get_input", "[1]");
  EXPECT_EQ(input, 1);
  _Pose pose;
  Ask([&] { return robot.get_pose(pose); }, "get_position", "[0.25, -0.5, 1, [0.1, 0, 3.5], 9]");
  EXPECT_EQ(pose.y, -0.5);
  EXPECT_EQ(pose.roll, static_cast<double>(0.1f));
  EXPECT_EQ(pose.yaw, 3.5);
}

// The controller, not the caller, decides how many values a reply holds: arrays get what they
// can hold (heap arrays of exactly that size, so a sanitizer build sees any overrun), vectors
// get everything.
TEST_F(RobotQueryTest, ALongReplyNeverOverrunsTheCallersArray) {
  const int ids[2] = {1, 2};
  auto two = std::make_unique<double[]>(2);
  ASSERT_TRUE(Ask([&] { return robot.get_velocity(2, ids, two.get()); }, "get_velocity",
                  "[1.5, 2.5, 3.5]"));
  EXPECT_EQ(std::vector<double>(two.get(), two.get() + 2), (std::vector<double>{1.5, 2.5}));

  auto joints = std::make_unique<double[]>(6);
  // Before any Setup, inverse writes the arm's six joints.
  ASSERT_TRUE(
      Ask([&] { return robot.inverse(_Pose{}, joints.get()); }, "inverse", "[1,2,3,4,5,6,7]"));
  EXPECT_EQ(joints[5], 6.0);
  std::string many = "[0";
  for (int i = 1; i < 4000; ++i) {
    many += "," + std::to_string(i % 10);
  }
  many += "]";
  auto none = std::make_unique<int[]>(1);
  none[0] = -1;
  ASSERT_TRUE(Ask([&] { return robot.get_input(none.get()); }, "get_input", many));
  EXPECT_EQ(none[0], -1) << "no motor ids cached, so no room";
  std::vector<int> inputs;
  ASSERT_TRUE(Ask([&] { return robot.get_input(inputs); }, "get_input", many));
  ASSERT_EQ(inputs.size(), 4000u);
  EXPECT_EQ(inputs[3999], 9);
}

// A refusal returns its state, read like strtol; a value that does not parse throws to the
// caller. Either way the outputs keep what they held and the session goes on.
TEST_F(RobotQueryTest, ARefusedOrUnreadableReplyLeavesTheOutputsUntouched) {
  double value = kUntouched;
  int inputs[2] = {-1, -1};
  _Pose pose{kUntouched, 0, 0, 0, 0, 0};
  Ask([&] { return robot.get_current(3, value); }, "get_current", "[2.5]", "1003abc");
  Ask([&] { return robot.get_pose(pose); }, "get_position", "[1,2,3,4,5,6]", "-3");
  EXPECT_THROW(Ask([&] { return robot.get_velocity(1, value); }, "get_velocity", "[]"),
               std::invalid_argument);
  EXPECT_THROW(Ask([&] { return robot.get_angles(1, value); }, "get_angles", "[1e40]"),
               std::out_of_range);
  EXPECT_THROW(Ask([&] { return robot.get_input(inputs); }, "get_input", "[1, x]"),
               std::invalid_argument);
  EXPECT_THROW(Ask([&] { return robot.get_pose(pose); }, "get_position", "[1,2,3,4,5]"),
               std::out_of_range);
  EXPECT_EQ(value, kUntouched);
  EXPECT_EQ(pose.x, kUntouched);
  EXPECT_EQ(inputs[0], -1) << "nothing is stored unless every value parses";
  EXPECT_EQ(
      Exchange([&] { return robot.get_angles(1, value); }, "get_angles", "", {{"result1", "[4]"}}),
      0)
      << "a state without a number is success";
  EXPECT_EQ(value, 4.0);
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
