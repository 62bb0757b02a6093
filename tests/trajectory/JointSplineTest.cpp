// The path between the points: it passes each point, honours given velocities, chooses the
// others so that accelerations are continuous, and knows its peaks.
#include <gtest/gtest.h>

#include <vector>

#include "trajectory/JointSpline.h"

namespace {

using tavclient::JointSpline;

std::vector<double> At(const JointSpline& spline, double t, bool speeds = false) {
  std::vector<double> position;
  std::vector<double> velocity;
  spline.Evaluate(t, position, velocity);
  return speeds ? velocity : position;
}

TEST(JointSplineTest, PassesEveryPointAndRestsBeyondTheEnds) {
  const JointSpline spline({0.0, 0.5, 1.5, 2.0}, {{0.0, 10.0}, {5.0, 8.0}, {-3.0, 2.0}, {1.0, 1.0}},
                           {{}, {}, {}, {}});
  EXPECT_EQ(At(spline, 0.5), (std::vector<double>{5.0, 8.0}));
  EXPECT_NEAR(At(spline, 1.5)[0], -3.0, 1e-12);
  EXPECT_EQ(At(spline, -1.0), (std::vector<double>{0.0, 10.0}));
  EXPECT_EQ(At(spline, 3.0), (std::vector<double>{1.0, 1.0}));
  EXPECT_EQ(At(spline, 3.0, true), (std::vector<double>{0.0, 0.0}));
  // Chosen velocities are zero at the ends.
  EXPECT_NEAR(At(spline, 1e-9, true)[0], 0.0, 1e-6);
  EXPECT_NEAR(At(spline, 2.0 - 1e-9, true)[1], 0.0, 1e-6);
}

TEST(JointSplineTest, ChosenVelocitiesMakeTheAccelerationContinuous) {
  const JointSpline spline({0.0, 0.4, 1.0, 1.3, 2.0}, {{0.0}, {12.0}, {4.0}, {9.0}, {20.0}},
                           {{}, {}, {}, {}, {}});
  const double h = 1e-6;
  for (double knot : {0.4, 1.0, 1.3}) {
    const double before = (At(spline, knot - h, true)[0] - At(spline, knot - 2 * h, true)[0]) / h;
    const double after = (At(spline, knot + 2 * h, true)[0] - At(spline, knot + h, true)[0]) / h;
    EXPECT_NEAR(before, after, 1e-2 * std::max(1.0, std::abs(before))) << "at " << knot;
  }
}

TEST(JointSplineTest, HonoursGivenVelocities) {
  const JointSpline spline({0.0, 1.0, 2.0}, {{0.0}, {10.0}, {10.0}}, {{5.0}, {-2.0}, {}});
  EXPECT_NEAR(At(spline, 1e-9, true)[0], 5.0, 1e-6);
  EXPECT_NEAR(At(spline, 1.0, true)[0], -2.0, 1e-9);
}

TEST(JointSplineTest, FindsTheLargestSpeedAndAcceleration) {
  // 10 degrees in one second from rest to rest: 10 (3s^2 - 2s^3).
  const JointSpline spline({0.0, 1.0}, {{0.0}, {10.0}}, {{}, {}});
  EXPECT_NEAR(spline.PeakVelocity(0).value, 15.0, 1e-9);
  EXPECT_NEAR(spline.PeakVelocity(0).time, 0.5, 1e-9);
  EXPECT_NEAR(std::abs(spline.PeakAcceleration(0).value), 60.0, 1e-9);
}

}  // namespace
