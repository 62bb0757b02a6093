#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>
#include <vector>

#include "WorkerFixture.h"
#include "client/Heart.h"
#include "support/ProcessProbe.h"

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

using Beats = Recorder<Clock::time_point>;

// Starts `heart` recording the times of its beats.
void StartRecording(Heart& heart) {
  Beats::Clear();
  heart.HeartEventRegister([] { Beats::Add(Clock::now()); });
  heart.Start();
}

TEST(HeartTest, DisableAndReenableRestartsThePeriod) {
  Heart heart(1000ms);
  StartRecording(heart);
  heart.Enable();
  std::this_thread::sleep_for(300ms);
  heart.Disable();
  const auto reenabled = Clock::now();
  heart.Enable();
  const std::vector<Clock::time_point> beats = Beats::WaitFor(2, 10s);
  heart.Disable();
  ASSERT_EQ(2U, beats.size());
  EXPECT_GE(beats[0] - reenabled, 1000ms) << "the first period was not restarted";
  EXPECT_LT(beats[0] - reenabled, 3000ms);
  EXPECT_GE(beats[1] - beats[0], 1000ms);
}

// Stop does not end an enabled heart, which meanwhile sleeps through its 9-second period.
TEST(HeartTest, AnEnabledHeartWaitsWithoutCpuAndStopBlocksUntilDisable) {
  Heart heart;
  StartRecording(heart);
  heart.Enable();
  const double cpuBefore = tavtest::ProcessCpuSeconds();
  std::future<void> stopped = std::async(std::launch::async, [&heart] { heart.Stop(); });
  // Longer than an idle check: a heart that looked at its running flag would have ended.
  EXPECT_EQ(std::future_status::timeout, stopped.wait_for(3s));
  EXPECT_LT(tavtest::ProcessCpuSeconds() - cpuBefore, 0.05);
  EXPECT_TRUE(Beats::WaitFor(1, 0ms).empty()) << "no beat before the period ends";
  heart.Disable();
  EXPECT_EQ(std::future_status::ready, stopped.wait_for(2s));
}

}  // namespace
