// The monitor on the simulator: what a sample holds, subscribers fast and slow, overruns,
// the session lost and regained, and the monitor's own life.
#include <gtest/gtest.h>

#include <cmath>
#include <future>

#include "common/RobotEvent.h"
#include "stream/MonitorFixture.h"

namespace {

using namespace std::chrono_literals;
using tavclient::Fields;
using tavclient::StateField;
using tavclient::StateSample;
using tavtest::Fresh;
using tavtest::MonitorFixture;
using tavtest::SampleWaiter;

constexpr tavclient::StateFields kEverything = StateField::Angles | StateField::Velocities |
                                               StateField::Currents | StateField::Inputs |
                                               StateField::Pose;

TEST_F(MonitorFixture, RefusesARateOutOfRangeOrNoField) {
  for (double rate : {0.5, 500.5, std::nan("")}) {
    EXPECT_EQ(Monitor(rate, Fields(StateField::Angles))->Start(), 1006011) << rate;
  }
  EXPECT_EQ(Monitor(100.0, 0)->Start(), 1006011);
  auto monitor = Monitor(500.0, Fields(StateField::Angles));
  EXPECT_EQ(monitor->Start(), 0);
  EXPECT_EQ(monitor->Start(), 0);
  EXPECT_TRUE(monitor->Running());
}

TEST_F(MonitorFixture, SamplesHoldTheArmsStateInOrder) {
  auto monitor = Monitor(100.0, kEverything);
  EXPECT_EQ(monitor->Latest(), nullptr);
  SampleWaiter waiter(*monitor);
  const int ids[] = {1, 2};
  const double targets[] = {12.5, -80.0};
  ASSERT_EQ(robot->Use([&](Robot& arm) {
    return arm.move_to_angles(2, ids, targets, 90.0f, 500.0f, Relative_Mode::Absolute);
  }),
            0);
  ASSERT_EQ(robot->Use([&](Robot& arm) { return arm.set_output(3, 1); }), 0);
  const auto before = std::chrono::steady_clock::now();
  ASSERT_EQ(monitor->Start(), 0);
  ASSERT_TRUE(waiter.WaitFor(
      [](const StateSample& s) { return Fresh(s) && s.velocities[0] == 0.0 && s.sequence > 3; }));
  const auto latest = monitor->Latest();
  ASSERT_NE(latest, nullptr);
  EXPECT_EQ(latest->fresh, kEverything);
  EXPECT_EQ(latest->code, 0);
  EXPECT_EQ(latest->motorIds, (std::vector<int>{1, 2, 3, 4, 5, 6}));
  EXPECT_NEAR(latest->angles[0], 12.5, 1e-4);
  EXPECT_NEAR(latest->angles[1], -80.0, 1e-4);
  EXPECT_EQ(latest->velocities.size(), 6u);
  EXPECT_EQ(latest->currents.size(), 6u);
  EXPECT_EQ(latest->inputIds.size(), 10u);
  EXPECT_EQ(latest->inputs[2], 1);
  EXPECT_EQ(latest->inputs[3], 0);
  EXPECT_GT(latest->pose.z, 0.0);
  EXPECT_GT(latest->time, before);
  EXPECT_LT(std::chrono::system_clock::now() - latest->wallTime, 5s);
  const auto samples = waiter.Samples();
  for (std::size_t i = 1; i < samples.size(); ++i) {
    EXPECT_EQ(samples[i].sequence, samples[i - 1].sequence + 1);
    EXPECT_GT(samples[i].time, samples[i - 1].time);
  }
  EXPECT_EQ(samples.front().sequence, 1u);
}

TEST_F(MonitorFixture, ASlowSubscriberMissesSamplesButStallsNobody) {
  auto monitor = Monitor(200.0, Fields(StateField::Angles));
  std::promise<void> release;
  std::shared_future<void> released = release.get_future().share();
  std::atomic<int> slowCalls{0};
  const int slow = monitor->Subscribe([&](const StateSample&) {
    ++slowCalls;
    released.wait();
  });
  SampleWaiter fast(*monitor);
  ASSERT_EQ(monitor->Start(), 0);
  ASSERT_TRUE(fast.WaitFor([](const StateSample& s) { return s.sequence >= 40; }));
  EXPECT_EQ(slowCalls, 1);
  EXPECT_GE(fast.Samples().size(), 35u);
  EXPECT_GT(monitor->Stats().droppedDeliveries, 30u);
  release.set_value();
  monitor->Unsubscribe(slow);
  monitor->Unsubscribe(slow);  // unknown by now: ignored
}

TEST_F(MonitorFixture, ACycleThatOverrunsSkipsTheSlotsItMissed) {
  auto monitor = Monitor(100.0, Fields(StateField::Angles));
  simulator.Faults().Add(tavsim::Fault::DelayReply("get_angles", 120ms).After(5));
  SampleWaiter waiter(*monitor);
  ASSERT_EQ(monitor->Start(), 0);
  ASSERT_TRUE(waiter.WaitFor([](const StateSample& s) { return s.sequence >= 30; }));
  monitor->Stop();
  const auto stats = monitor->Stats();
  EXPECT_GE(stats.missedCycles, 10u);
  // Each slot was either sampled or counted as missed: none was made up afterwards.
  const auto samples = waiter.Samples();
  const double slots =
      std::chrono::duration<double>(samples.back().time - samples.front().time).count() * 100.0;
  EXPECT_NEAR(static_cast<double>(stats.samples + stats.missedCycles), slots + 1.0, 3.0);
}

TEST_F(MonitorFixture, SamplesCarryTheFailureWhileTheSessionIsAwayAndResumeAfter) {
  auto monitor = Monitor(100.0, StateField::Angles | StateField::Velocities);
  SampleWaiter waiter(*monitor);
  ASSERT_EQ(monitor->Start(), 0);
  ASSERT_TRUE(waiter.WaitFor(Fresh));
  robot->Disconnect();
  ASSERT_TRUE(waiter.WaitFor([](const StateSample& s) { return s.code == 1001011; }));
  const auto away = monitor->Latest();
  EXPECT_EQ(away->fresh, 0u);
  EXPECT_TRUE(away->angles.empty());
  EXPECT_TRUE(away->velocities.empty());
  ASSERT_EQ(Connect(simulator), 0);
  EXPECT_TRUE(waiter.WaitFor(Fresh));

  // The controller gone for good, and another in its place.
  simulator.Stop();
  ASSERT_TRUE(waiter.WaitFor([](const StateSample& s) { return s.code != 0; }));
  tavsim::SimulatorServer replacement;
  ASSERT_EQ(Connect(replacement), 0);
  EXPECT_TRUE(waiter.WaitFor([](const StateSample& s) { return Fresh(s) && s.code == 0; }));
  EXPECT_GT(monitor->Stats().failedSamples, 0u);
}

TEST_F(MonitorFixture, StopsAndStartsAgainAndOutlivesTheApplicationsRobot) {
  auto monitor = Monitor(50.0, Fields(StateField::Angles));
  ASSERT_EQ(monitor->Start(), 0);
  {
    SampleWaiter waiter(*monitor);
    ASSERT_TRUE(waiter.WaitFor(Fresh));
  }
  monitor->Stop();
  EXPECT_FALSE(monitor->Running());
  const std::uint64_t last = monitor->Latest()->sequence;
  ASSERT_EQ(monitor->Start(), 0);
  // The application lets go of its robot: the monitor keeps it.
  robot.reset();
  SampleWaiter waiter(*monitor);
  ASSERT_TRUE(waiter.WaitFor([&](const StateSample& s) { return Fresh(s) && s.sequence > last; }));
}

}  // namespace
