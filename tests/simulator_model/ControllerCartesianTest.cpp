// Pose queries, kinematics through the wire texts and the tool-space moves.
#include <cmath>

#include "ControllerFixture.h"
#include "model/Pose.h"

namespace tavsim::test {
namespace {

const std::string kAllMotors = R"(["1","2","3","4","5","6"])";

// The client's own texts: numbers with "%f", a pose as [x,y,z,[roll,pitch,yaw]].
std::string fixed(const std::vector<double>& values, std::size_t from, std::size_t to) {
  std::string text;
  for (std::size_t i = from; i < to; ++i) {
    text += (i > from ? "," : "") + std::to_string(values[i]);
  }
  return text;
}
std::string poseText(const std::vector<double>& p) {
  return "[" + fixed(p, 0, 3) + ",[" + fixed(p, 3, 6) + "]]";
}

// The larger of position error and orientation error (radians) between two pose replies.
double poseError(const std::vector<double>& a, const std::vector<double>& b) {
  Transform ta = PoseToTransform({a[0], a[1], a[2], a[3], a[4], a[5]});
  Transform tb = PoseToTransform({b[0], b[1], b[2], b[3], b[4], b[5]});
  return std::max(Norm(ta.translation - tb.translation), RotationAngle(ta.rotation, tb.rotation));
}

class Cartesian : public ReadyController {
protected:
  std::vector<double> pose() { return query("get_position"); }
  std::vector<double> forwardOf(const std::vector<double>& joints) {
    return query("forward", {{"angles", "[" + fixed(joints, 0, joints.size()) + "]"}});
  }
  std::vector<double> angles() { return query("get_angles", motors(kAllMotors)); }
};

TEST_F(Cartesian, LinearMoveKeepsTheToolOnTheLineAndTakesItsTime) {
  const std::vector<double> start = pose();
  std::vector<double> target = start;
  target[0] += 0.15;
  target[2] -= 0.10;
  target[5] += 0.3;
  ASSERT_EQ(state("moveL", pathParams("[" + poseText(target) + "]", "0.100000", "0.200000")),
            StateCodes::kOk);
  // 0.18 m at 0.1 m/s with 0.2 m/s^2 ramps: 0.5 s up, 0.5 s down, 1.3 s cruise.
  const double length = std::hypot(0.15, 0.10);
  const double expected = length / 0.1 + 0.1 / 0.2;
  const Vec3 a{start[0], start[1], start[2]};
  const Vec3 direction = (1.0 / length) * (Vec3{target[0], target[1], target[2]} - a);
  for (int step = 1; step <= 9; ++step) {
    clock->Advance(expected / 10);
    const std::vector<double> now = forwardOf(angles());
    const Vec3 offset = Vec3{now[0], now[1], now[2]} - a;
    EXPECT_LT(Norm(offset - Dot(offset, direction) * direction), 1e-4) << "step " << step;
    EXPECT_GT(Dot(offset, direction), 0.0);
    EXPECT_LT(Dot(offset, direction), length);
  }
  EXPECT_TRUE(call("wait_for_motors", motors(kAllMotors)).Pending());
  clock->Advance(expected * 0.15);
  EXPECT_EQ(state("wait_for_motors", motors(kAllMotors)), StateCodes::kOk);
  EXPECT_LT(poseError(pose(), target), 1e-5);
}

TEST_F(Cartesian, JointPathVisitsEachPointAndClosedReturnsToTheFirst) {
  const std::vector<double> first = forwardOf({10, -80, 80, -90, -90, 0});
  const std::vector<double> second = forwardOf({-10, -100, 100, -90, -90, 20});
  ASSERT_EQ(state("moveJ", pathParams("[" + poseText(first) + "," + poseText(second) + "]", "60",
                                      "120", "1")),
            StateCodes::kOk);
  bool visitedFirst = false, visitedSecond = false;
  for (int step = 0; step < 400; ++step) {
    clock->Advance(0.01);
    visitedFirst = visitedFirst || poseError(pose(), first) < 1e-4;
    visitedSecond = visitedSecond || poseError(pose(), second) < 1e-4;
  }
  EXPECT_TRUE(visitedFirst);
  EXPECT_TRUE(visitedSecond);
  EXPECT_LT(poseError(pose(), first), 1e-5);
}

TEST_F(Cartesian, ProcessMoveRoundsCornersAndEndsOnTheLastPoint) {
  std::vector<double> corner = pose();
  corner[0] += 0.1;
  std::vector<double> end = corner;
  end[1] += 0.1;
  ASSERT_EQ(
      state("moveP", pathParams("[" + poseText(corner) + "," + poseText(end) + "]", "0.1", "0.5")),
      StateCodes::kOk);
  double closest = 1.0;
  for (int step = 0; step < 300; ++step) {
    clock->Advance(0.01);
    closest = std::min(closest, poseError(pose(), corner));
  }
  EXPECT_GT(closest, 1e-3) << "cut by the blend";
  EXPECT_LT(closest, 0.02) << "yet close by";
  EXPECT_LT(poseError(pose(), end), 1e-5);
}

TEST_F(Cartesian, BlockingRelativePoseMoveShiftsTheToolAndACrawlStaysDefined) {
  std::vector<double> expected = pose();
  Params params{{"position", "[0.000000,0.050000,0.020000,[0.000000,0.000000,0.000000]]"},
                {"velocity", "0.1"},
                {"acceleration", "0.5"},
                {"relative", "1"},
                {"block", "1"}};
  ASSERT_TRUE(call("move_to_position", params).Pending());
  clock->Advance(5.0);
  ASSERT_EQ(controller.Poll().size(), 1u);
  expected[1] += 0.05;
  expected[2] += 0.02;
  EXPECT_LT(poseError(pose(), expected), 1e-5);

  params["velocity"] = "0.000000001";  // some three centuries for the way
  params["block"] = "0";
  EXPECT_EQ(state("move_to_position", params), StateCodes::kOk);
  clock->Advance(3600.0);
  EXPECT_TRUE(call("wait_for_motors", motors(kAllMotors)).Pending());
}

}  // namespace
}  // namespace tavsim::test
