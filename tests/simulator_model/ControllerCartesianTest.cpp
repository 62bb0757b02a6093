// Pose queries, kinematics through the wire texts and the tool-space moves.
#include <cmath>
#include <random>

#include "ControllerFixture.h"
#include "model/ArmKinematics.h"
#include "model/Pose.h"

namespace tavsim::test {
namespace {

const std::string kAllMotors = R"(["1","2","3","4","5","6"])";

std::string poseText(const std::vector<double>& p) {
  // The client's own pose form: [x,y,z,[roll,pitch,yaw]] with "%f".
  return "[" + std::to_string(p[0]) + "," + std::to_string(p[1]) + "," + std::to_string(p[2]) +
         ",[" + std::to_string(p[3]) + "," + std::to_string(p[4]) + "," + std::to_string(p[5]) +
         "]]";
}

Transform toTransform(const std::vector<double>& p) {
  return poseToTransform({p[0], p[1], p[2], p[3], p[4], p[5]});
}

// Position error and orientation error (radians) between two pose replies.
double poseError(const std::vector<double>& a, const std::vector<double>& b) {
  Transform ta = toTransform(a);
  Transform tb = toTransform(b);
  return std::max(norm(ta.translation - tb.translation), rotationAngle(ta.rotation, tb.rotation));
}

std::vector<double> shifted(std::vector<double> pose, std::size_t index, double by) {
  pose.at(index) += by;
  return pose;
}

class Cartesian : public ControllerFixture {
protected:
  void SetUp() override { setUpRobot(); }

  std::vector<double> pose() { return query("get_position"); }
  std::vector<double> forwardOf(const std::vector<double>& joints) {
    return query("forward", {{"angles", numberList(joints)}});
  }
  std::vector<double> angles() { return query("get_angles", {{"motor_ids", kAllMotors}}); }
  Params path(const std::string& points, const std::string& velocity,
              const std::string& acceleration, const std::string& closed = "0") {
    return {{"points", points}, {"velocity", velocity}, {"acceleration", acceleration},
            {"interval", "0.000000"}, {"closed", closed}};
  }
};

TEST_F(Cartesian, ForwardOfTheCurrentJointsIsThePose) {
  ASSERT_EQ(state("move_to_angles", moveParams(kAllMotors, "[10,-70,80,-100,-80,30]", "60", "120")),
            StateCodes::kOk);
  clock->advance(0.3);
  EXPECT_LT(poseError(forwardOf(angles()), pose()), 1e-5);
  clock->advance(10.0);
  EXPECT_LT(poseError(forwardOf(angles()), pose()), 1e-5);
}

TEST_F(Cartesian, InverseOfReachablePosesLeadsBackToThem) {
  std::mt19937 rng(3);
  std::uniform_real_distribution<double> angle(-180.0, 180.0);
  for (int trial = 0; trial < 100; ++trial) {
    std::vector<double> joints(6);
    for (double& joint : joints) {
      joint = angle(rng);
    }
    std::vector<double> target = forwardOf(joints);
    std::vector<double> solved = query("inverse", {{"position", poseText(target)}});
    ASSERT_EQ(solved.size(), 6u);
    std::vector<double> sent(target);
    for (double& value : sent) {
      value = std::stod(std::to_string(value));  // what "%f" let through
    }
    EXPECT_LT(poseError(forwardOf(solved), sent), 1e-4) << "trial " << trial;
  }
}

TEST_F(Cartesian, InverseAnswersTheBranchNearestTheArm) {
  // The pose the arm holds is reached by the joints it holds, among up to eight branches.
  std::vector<double> here = angles();
  std::vector<double> solved = query("inverse", {{"position", poseText(pose())}});
  for (std::size_t i = 0; i < here.size(); ++i) {
    EXPECT_NEAR(solved[i], here[i], 1e-3);
  }
}

TEST_F(Cartesian, UnreachablePosesAreRefused) {
  std::string far = "[1.500000,0.000000,0.300000,[0.000000,0.000000,0.000000]]";
  EXPECT_EQ(state("inverse", {{"position", far}}), StateCodes::kUnreachable);
  EXPECT_EQ(state("move_to_position", {{"position", far}, {"velocity", "0.1"},
                                       {"acceleration", "0.5"}, {"relative", "0"},
                                       {"block", "0"}}),
            StateCodes::kUnreachable);
  EXPECT_EQ(state("moveJ", path("[" + far + "]", "30", "60")), StateCodes::kUnreachable);
  EXPECT_EQ(query("get_velocity", {{"motor_ids", kAllMotors}}), std::vector<double>(6, 0.0));
}

TEST_F(Cartesian, ExtremeSpeedsStayDefined) {
  Params params{{"position", "[0.0,0.0,0.01,[0.0,0.0,0.0]]"},
                {"velocity", "1e400"},
                {"acceleration", "1.0"},
                {"relative", "1"},
                {"block", "0"}};
  EXPECT_EQ(state("move_to_position", params), StateCodes::kBadParameter);
  params["velocity"] = "0.000000001";  // a crawl of some three centuries
  EXPECT_EQ(state("move_to_position", params), StateCodes::kOk);
  clock->advance(3600.0);
  EXPECT_TRUE(call("wait_for_motors", {{"motor_ids", kAllMotors}}).pending());
}

TEST_F(Cartesian, LinearMoveKeepsTheToolOnTheLineAndTakesItsTime) {
  std::vector<double> start = pose();
  std::vector<double> target = start;
  target[0] += 0.15;
  target[2] -= 0.10;
  target[5] += 0.3;
  ASSERT_EQ(state("moveL", {{"points", "[" + poseText(target) + "]"},
                            {"radius", "[0.000000]"},
                            {"velocity", "0.100000"},
                            {"acceleration", "0.200000"},
                            {"interval", "0.000000"},
                            {"closed", "0"}}),
            StateCodes::kOk);
  // 0.18 m at 0.1 m/s with 0.2 m/s^2 ramps: 0.5 s up, 0.5 s down, 1.3 s cruise.
  double length = std::hypot(0.15, 0.10);
  double expected = length / 0.1 + 0.1 / 0.2;
  Vec3 a{start[0], start[1], start[2]};
  Vec3 b{target[0], target[1], target[2]};
  Vec3 direction = (1.0 / norm(b - a)) * (b - a);
  for (int step = 1; step <= 9; ++step) {
    clock->advance(expected / 10);
    std::vector<double> now = forwardOf(angles());
    Vec3 p{now[0], now[1], now[2]};
    Vec3 offset = p - a;
    Vec3 off = offset - dot(offset, direction) * direction;
    EXPECT_LT(norm(off), 1e-4) << "step " << step;
    EXPECT_GT(dot(offset, direction), 0.0);
    EXPECT_LT(dot(offset, direction), length);
  }
  EXPECT_TRUE(call("wait_for_motors", {{"motor_ids", kAllMotors}}).pending());
  clock->advance(expected * 0.15);
  EXPECT_EQ(state("wait_for_motors", {{"motor_ids", kAllMotors}}), StateCodes::kOk);
  EXPECT_LT(poseError(pose(), target), 1e-5);
}

TEST_F(Cartesian, JointPathVisitsEachPointAndClosedReturnsToTheFirst) {
  std::vector<double> home = angles();
  std::vector<double> first = forwardOf({10, -80, 80, -90, -90, 0});
  std::vector<double> second = forwardOf({-10, -100, 100, -90, -90, 20});
  std::string points = "[" + poseText(first) + "," + poseText(second) + "]";
  ASSERT_EQ(state("moveJ", path(points, "60", "120", "1")), StateCodes::kOk);
  bool visitedFirst = false;
  bool visitedSecond = false;
  for (int step = 0; step < 400; ++step) {
    clock->advance(0.01);
    std::vector<double> now = pose();
    visitedFirst = visitedFirst || poseError(now, first) < 1e-4;
    visitedSecond = visitedSecond || poseError(now, second) < 1e-4;
  }
  EXPECT_TRUE(visitedFirst);
  EXPECT_TRUE(visitedSecond);
  EXPECT_LT(poseError(pose(), first), 1e-5);
  EXPECT_NE(angles(), home);
}

TEST_F(Cartesian, ProcessMoveRoundsCornersAndEndsOnTheLastPoint) {
  std::vector<double> corner = shifted(pose(), 0, 0.1);
  std::vector<double> end = shifted(corner, 1, 0.1);
  std::string points = "[" + poseText(corner) + "," + poseText(end) + "]";
  ASSERT_EQ(state("moveP", path(points, "0.1", "0.5")), StateCodes::kOk);
  double closest = 1.0;
  for (int step = 0; step < 300; ++step) {
    clock->advance(0.01);
    closest = std::min(closest, poseError(pose(), corner));
  }
  // Cut by the blend, yet close by.
  EXPECT_GT(closest, 1e-3);
  EXPECT_LT(closest, 0.02);
  EXPECT_LT(poseError(pose(), end), 1e-5);
}

TEST_F(Cartesian, RelativePoseMoveShiftsTheTool) {
  std::vector<double> start = pose();
  Reply reply = call("move_to_position",
                     {{"position", "[0.000000,0.050000,0.020000,[0.000000,0.000000,0.000000]]"},
                      {"velocity", "0.1"},
                      {"acceleration", "0.5"},
                      {"relative", "1"},
                      {"block", "1"}});
  ASSERT_TRUE(reply.pending());
  clock->advance(5.0);
  ASSERT_EQ(controller.poll().size(), 1u);
  std::vector<double> expected = start;
  expected[1] += 0.05;
  expected[2] += 0.02;
  EXPECT_LT(poseError(pose(), expected), 1e-5);
}

}  // namespace
}  // namespace tavsim::test
