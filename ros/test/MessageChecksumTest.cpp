#include <gtest/gtest.h>
#include <ros/message_traits.h>
#include <ros/service_traits.h>
#include <tavclient_ros/FollowJointTrajectoryAction.h>

namespace {

template <typename Message>
std::string Md5() {
  return ros::message_traits::MD5Sum<Message>::value();
}

// Clients built against the common ROS 1 definition of the action (MoveIt's controller
// manager among them) connect only when every checksum matches theirs.
TEST(MessageChecksums, MatchTheCommonFollowJointTrajectoryAction) {
  using namespace tavclient_ros;
  EXPECT_EQ(Md5<FollowJointTrajectoryActionGoal>(), "cff5c1d533bf2f82dd0138d57f4304bb");
  EXPECT_EQ(Md5<FollowJointTrajectoryAction>(), "bc4f9b743838566551c0390c65f1a248");
  EXPECT_EQ(Md5<FollowJointTrajectoryActionResult>(), "c4fb3b000dc9da4fd99699380efcc5d9");
  EXPECT_EQ(Md5<FollowJointTrajectoryActionFeedback>(), "d8920dc4eae9fc107e00999cce4be641");
  EXPECT_EQ(Md5<FollowJointTrajectoryGoal>(), "69636787b6ecbde4d61d711979bc7ecb");
  EXPECT_EQ(Md5<FollowJointTrajectoryResult>(), "493383b18409bfb604b4e26c676401d2");
  EXPECT_EQ(Md5<FollowJointTrajectoryFeedback>(), "10817c60c2486ef6b33e97dcd87f4474");
  EXPECT_EQ(Md5<JointTolerance>(), "f544fe9c16cf04547e135dd6063ff5be");
}

}  // namespace
