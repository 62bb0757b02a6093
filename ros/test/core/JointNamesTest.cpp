#include "JointNames.h"

#include <gtest/gtest.h>

namespace tavdriver {
namespace {

TEST(JointNames, MapsNamesOfThisArmToMotorIds) {
  const JointNames names("left_");
  EXPECT_EQ(names.Names({1, 2, 10}),
            (std::vector<std::string>{"left_joint_1", "left_joint_2", "left_joint_10"}));
  const std::vector<int> known{1, 2, 3, 4, 5, 6};
  std::vector<int> ids;
  std::string reason;
  EXPECT_TRUE(names.MotorIds({"left_joint_3", "left_joint_1"}, known, ids, reason));
  EXPECT_EQ(ids, (std::vector<int>{3, 1}));

  const std::vector<std::vector<std::string>> refused{
      {},
      {"joint_1"},
      {"right_joint_1"},
      {"left_joint_7"},
      {"left_joint_0"},
      {"left_joint_01"},
      {"left_joint_1x"},
      {"left_joint_"},
      {"left_joint_2", "left_joint_2"},
  };
  for (const auto& list : refused) {
    reason.clear();
    EXPECT_FALSE(names.MotorIds(list, known, ids, reason)) << ::testing::PrintToString(list);
    EXPECT_FALSE(reason.empty());
  }
  EXPECT_TRUE(JointNames("").MotorIds({"joint_6"}, known, ids, reason));
}

}  // namespace
}  // namespace tavdriver
