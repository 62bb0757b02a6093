// Following paths on the simulator: arrival, cancel, replacement and every way a run fails.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <future>

#include "common/RobotEvent.h"
#include "trajectory/FollowerFixture.h"

namespace {

using namespace std::chrono_literals;
using tavclient::FollowOutcome;
using tavclient::FollowProgress;
using tavclient::FollowResult;
using tavtest::FollowerFixture;
using tavtest::SmoothPath;

// Degrees: a follower that keeps to the path stays well within this; one that does not strays
// by tens of degrees over these paths.
constexpr double kOnThePath = 5.0;

double Largest(const std::vector<double>& values) {
  double largest = 0.0;
  for (double value : values) {
    largest = std::max(largest, std::abs(value));
  }
  return largest;
}

// Waits, without sleeping, until the run has followed for `seconds`.
class ProgressGate {
public:
  explicit ProgressGate(double seconds) : after(seconds) {}
  void operator()(const FollowProgress& progress) {
    if (progress.time >= after && !opened.exchange(true)) {
      reached.set_value();
    }
  }
  bool Wait() { return reached.get_future().wait_for(10s) == std::future_status::ready; }

private:
  double after;
  std::atomic<bool> opened{false};
  std::promise<void> reached;
};

TEST_F(FollowerFixture, ArrivesOnThePathAndReportsEveryCycle) {
  const auto trajectory = SmoothPath(2.0, 20);
  int reports = 0;
  bool consistent = true;
  const FollowResult result = follower.Follow(trajectory, {}, [&](const FollowProgress& p) {
    ++reports;
    for (std::size_t j = 0; j < p.error.size(); ++j) {
      consistent = consistent && p.error[j] == p.actual[j] - p.desired[j];
    }
  });
  ASSERT_EQ(result.outcome, FollowOutcome::Succeeded) << result.message;
  EXPECT_EQ(result.code, 0);
  // The tracking figures belong to the benchmark; a loaded machine stalls a cycle now and then,
  // so this only tells a follower that keeps to the path from one that does not.
  EXPECT_LT(result.maxError, kOnThePath);
  EXPECT_LT(Largest(result.finalError), 0.05);
  EXPECT_EQ(result.plannedDuration, 2.0);
  EXPECT_GE(result.duration, 2.0);
  EXPECT_LT(result.duration, 2.5);
  // About one report per cycle of 8 ms.
  EXPECT_GT(reports, 150);
  EXPECT_TRUE(consistent);
  const auto angles = Angles();
  for (std::size_t j = 0; j < 6; ++j) {
    EXPECT_NEAR(angles[j], trajectory.points.back().positions[j], 0.05) << "joint " << j + 1;
  }
  EXPECT_FALSE(follower.Running());
}

TEST_F(FollowerFixture, RefusesWithTheReasonAndSendsNothing) {
  struct Case {
    const char* reason;
    std::function<void(tavclient::JointTrajectory&)> spoil;
  };
  const std::vector<Case> cases{
      {"not one of the arm's motors", [](auto& t) { t.motorIds[5] = 9; }},
      {"named twice", [](auto& t) { t.motorIds[5] = 1; }},
      {"no points", [](auto& t) { t.points.clear(); }},
      {"strictly increasing",
       [](auto& t) { t.points[3].timeFromStart = t.points[2].timeFromStart; }},
      {"not negative", [](auto& t) { t.points[0].timeFromStart = -0.1; }},
      {"5 positions for 6 motors", [](auto& t) { t.points[4].positions.pop_back(); }},
      {"2 velocities for 6 motors",
       [](auto& t) {
         t.points[4].velocities = {1.0, 2.0};
       }},
      {"finite", [](auto& t) { t.points[4].positions[2] = std::nan(""); }},
      {"beyond +-360", [](auto& t) { t.points[4].positions[2] = 361.0; }},
      {"deg/s at", [](auto& t) { t.points[4].velocities.assign(6, 200.0); }},
  };
  for (const Case& c : cases) {
    auto trajectory = SmoothPath(2.0, 20);
    c.spoil(trajectory);
    std::string reason;
    EXPECT_EQ(follower.Check(trajectory, reason), 1006011) << c.reason;
    EXPECT_NE(reason.find(c.reason), std::string::npos) << c.reason << ": " << reason;
    const FollowResult result = follower.Follow(trajectory);
    EXPECT_EQ(result.outcome, FollowOutcome::Invalid) << c.reason;
    EXPECT_EQ(result.code, 1006011);
    EXPECT_EQ(result.message, reason);
  }
  // Tolerances and limits of the wrong count.
  tavclient::FollowTolerances tolerances;
  tolerances.goal = {0.1, 0.1};
  EXPECT_NE(follower.Follow(SmoothPath(2.0, 20), tolerances).message.find("goal tolerances"),
            std::string::npos);
  tavclient::TrajectoryFollower slow(robot, monitor, {{10.0}, {}});
  std::string reason;
  EXPECT_EQ(slow.Check(SmoothPath(2.0, 20), reason), 1006011);
  EXPECT_NE(reason.find("above its limit of 10.0 deg/s"), std::string::npos) << reason;
  tavclient::TrajectoryFollower gentle(robot, monitor, {{}, {1.0, 2.0, 3.0, 4.0, 5.0, 6.0}});
  EXPECT_EQ(gentle.Check(SmoothPath(2.0, 20), reason), 1006011);
  EXPECT_NE(reason.find("motor 1 needs"), std::string::npos) << reason;
  EXPECT_NE(reason.find("above its limit of 1.0 deg/s^2"), std::string::npos) << reason;
  tavclient::TrajectoryFollower miscounted(robot, monitor, {{1.0, 2.0}, {}});
  EXPECT_EQ(miscounted.Check(SmoothPath(2.0, 20), reason), 1006011);
  EXPECT_EQ(reason, "velocity limits: 2 values for 6 motors");
  // Without a running monitor nothing can be tracked.
  monitor->Stop();
  EXPECT_EQ(follower.Follow(SmoothPath(2.0, 20)).message, "the state monitor is not running");
  EXPECT_EQ(CommandsSent("move_to_angles"), 0);
  EXPECT_EQ(CommandsSent("hold"), 0);
}

TEST_F(FollowerFixture, CancelBrakesAndReturnsAtOnce) {
  ProgressGate gate(0.8);
  auto running = std::async(
      std::launch::async, [&] { return follower.Follow(SmoothPath(3.0, 30), {}, std::ref(gate)); });
  ASSERT_TRUE(gate.Wait());
  EXPECT_TRUE(follower.Running());
  follower.Cancel();
  ASSERT_EQ(running.wait_for(100ms), std::future_status::ready);
  const FollowResult result = running.get();
  EXPECT_EQ(result.outcome, FollowOutcome::Cancelled);
  EXPECT_LT(result.duration, 3.0);
  EXPECT_EQ(CommandsSent("hold"), 1);
  // Braked to rest, and the controller takes the next move.
  tavtest::SampleWaiter waiter(*monitor);
  EXPECT_TRUE(waiter.WaitFor([](const tavclient::StateSample& s) {
    return Has(s.fresh, tavclient::StateField::Velocities) && Largest(s.velocities) == 0.0;
  }));
  EXPECT_EQ(robot->Use([](Robot& arm) {
    return arm.move_to_angles(1, 5.0, 10.0f, 100.0f, Relative_Mode::Absolute);
  }),
            0);
  follower.Cancel();  // none runs: nothing happens
}

TEST_F(FollowerFixture, ANewTrajectoryTakesOverWithoutAStop) {
  ProgressGate gate(1.5);
  auto first = std::async(std::launch::async,
                          [&] { return follower.Follow(SmoothPath(3.0, 30), {}, std::ref(gate)); });
  ASSERT_TRUE(gate.Wait());
  tavtest::SampleWaiter waiter(*monitor);
  // On the same way from where the arm is, a little further.
  auto second = SmoothPath(3.0, 30, 1.2);
  second.points.erase(second.points.begin(), second.points.begin() + 17);
  for (auto& point : second.points) {
    point.timeFromStart -= 1.5;
  }
  const auto handOver = std::chrono::steady_clock::now();
  const FollowResult result = follower.Follow(second);
  EXPECT_EQ(first.get().outcome, FollowOutcome::Replaced);
  EXPECT_EQ(result.outcome, FollowOutcome::Succeeded) << result.message;
  EXPECT_LT(result.maxError, kOnThePath);
  EXPECT_EQ(CommandsSent("hold"), 0);
  int seen = 0;
  for (const auto& sample : waiter.Samples()) {
    if (sample.time >= handOver && sample.time < handOver + 500ms) {
      ++seen;
      EXPECT_GT(Largest(sample.velocities), 1.0) << "at rest during the take-over";
    }
  }
  EXPECT_GT(seen, 10);
}

TEST_F(FollowerFixture, LaggingBeyondThePathToleranceBrakes) {
  // Every set-point's reply comes late: the arm falls behind its path.
  simulator.Faults().Add(tavsim::Fault::DelayReply("move_to_angles", 30ms).Always());
  tavclient::FollowTolerances tolerances;
  tolerances.path = {0.5};
  const FollowResult result = follower.Follow(SmoothPath(2.0, 20), tolerances);
  EXPECT_EQ(result.outcome, FollowOutcome::PathToleranceExceeded);
  EXPECT_NE(result.message.find("from its path"), std::string::npos) << result.message;
  EXPECT_GT(result.maxError, 0.5);
  EXPECT_EQ(CommandsSent("hold"), 1);
}

TEST_F(FollowerFixture, NotArrivingWithinTheGoalTimeBrakes) {
  auto trajectory = SmoothPath(0.5, 5, 0.2);
  // Set-points carry six decimals: the arm stops a tenth of a millionth short of this point.
  trajectory.points.back().positions[0] += 1e-7;
  tavclient::FollowTolerances tolerances;
  tolerances.goal = {0.0};
  tolerances.goalTime = 0.1;
  const FollowResult result = follower.Follow(trajectory, tolerances);
  EXPECT_EQ(result.outcome, FollowOutcome::GoalToleranceExceeded) << result.message;
  EXPECT_GE(result.duration, 0.6);
  EXPECT_EQ(CommandsSent("hold"), 1);
}

TEST_F(FollowerFixture, WithoutFreshStateTheArmStillKeepsToThePath) {
  ProgressGate gate(0.5);
  auto running = std::async(
      std::launch::async, [&] { return follower.Follow(SmoothPath(1.5, 15), {}, std::ref(gate)); });
  // A monitor of the test's own watches the arm throughout.
  auto watch = std::make_shared<tavclient::StateMonitor>(robot, MonitorOptions());
  tavtest::SampleWaiter watcher(*watch);
  ASSERT_EQ(watch->Start(), 0);
  ASSERT_TRUE(gate.Wait());
  // The follower's last reading goes stale: it cannot see the arm arrive, but must not steer
  // by a reading carried on for ever.
  monitor->Stop();
  const FollowResult result = running.get();
  EXPECT_EQ(result.outcome, FollowOutcome::GoalToleranceExceeded);
  // Every joint's path runs one way only: the arm never turned back by more than a late
  // cycle's way (a loaded machine delays cycles, and a joint then corrects a little).
  std::vector<double> farthest(6, -1e9);
  for (const auto& sample : watcher.Samples()) {
    for (std::size_t j = 0; j < sample.angles.size() && j < farthest.size(); ++j) {
      const double along = sample.angles[j] * (tavtest::kReach[j] > 0 ? 1.0 : -1.0);
      farthest[j] = std::max(farthest[j], along);
      EXPECT_GT(along, farthest[j] - 1.0) << j + 1;
    }
  }
  const auto angles = Angles();
  for (std::size_t j = 0; j < 6; ++j) {
    EXPECT_NEAR(angles[j], SmoothPath(1.5, 15).points.back().positions[j], 2 * kOnThePath) << j + 1;
  }
}

TEST_F(FollowerFixture, ARefusedSetPointEndsTheRunWithItsCode) {
  ProgressGate gate(0.3);
  auto running = std::async(
      std::launch::async, [&] { return follower.Follow(SmoothPath(2.0, 20), {}, std::ref(gate)); });
  ASSERT_TRUE(gate.Wait());
  // Stopped, the controller refuses moves.
  ASSERT_EQ(robot->Use([](Robot& arm) { return arm.stop(); }), 0);
  const FollowResult result = running.get();
  EXPECT_EQ(result.outcome, FollowOutcome::CommandRefused);
  EXPECT_EQ(result.code, 2001051);
}

TEST_F(FollowerFixture, ALostSessionEndsTheRun) {
  simulator.Faults().Add(tavsim::Fault::CloseConnection("move_to_angles").After(100));
  const FollowResult result = follower.Follow(SmoothPath(2.0, 20));
  EXPECT_EQ(result.outcome, FollowOutcome::SessionFailed);
  EXPECT_EQ(result.code, RobotEvents::kReceiveFailed) << result.message;
  EXPECT_EQ(CommandsSent("hold"), 0);
}

}  // namespace
