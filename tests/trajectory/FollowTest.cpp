// Following paths on the simulator: arrival, cancel, replacement and the ends that fail.
#include <gtest/gtest.h>

#include <future>

#include "trajectory/FollowerFixture.h"

namespace {

using tavclient::FollowOutcome;
using tavtest::FollowerFixture;
using tavtest::SmoothPath;

TEST_F(FollowerFixture, ArrivesOnTimeAndOnThePath) {
  const auto trajectory = SmoothPath(2.0, 20);
  int cycles = 0;
  const auto result = follower.Follow(trajectory, {}, [&](const tavclient::FollowProgress& p) {
    ++cycles;
    ASSERT_EQ(p.error.size(), 6u);
  });
  EXPECT_EQ(result.outcome, FollowOutcome::Succeeded) << result.message;
  std::printf("max %.4f duration %.4f planned %.4f final %.5f cycles %d\n", result.maxError,
              result.duration, result.plannedDuration,
              *std::max_element(result.finalError.begin(), result.finalError.end(),
                                [](double a, double b) { return std::abs(a) < std::abs(b); }),
              cycles);
  EXPECT_LT(result.maxError, 1.0);
}

}  // namespace
