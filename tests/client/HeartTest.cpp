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

// The period is longer than an idle check, so a heart that looked at its running flag while
// enabled would end before its first beat.
TEST(HeartTest, ARestartedPeriodBeatsAfreshSleepingInBetweenAndStopWaitsForDisable) {
  Heart heart;
  heart.SetTiming(1500ms, 1h);
  Beats::Clear();
  heart.HeartEventRegister([] { Beats::Add(Clock::now()); });
  heart.Start();
  heart.Enable();
  std::this_thread::sleep_for(300ms);  // part of a period, which the re-enable must discard
  heart.Disable();
  const auto reenabled = Clock::now();
  heart.Enable();
  const double cpuBefore = tavtest::ProcessCpuSeconds();
  std::future<void> stopped = std::async(std::launch::async, [&heart] { heart.Stop(); });
  const std::vector<Clock::time_point> beats = Beats::WaitFor(2, 10s);
  EXPECT_LT(tavtest::ProcessCpuSeconds() - cpuBefore, 0.05);
  ASSERT_EQ(2U, beats.size());
  EXPECT_GE(beats[0] - reenabled, 1500ms) << "the period was not restarted";
  EXPECT_LT(beats[0] - reenabled, 3000ms);
  EXPECT_GE(beats[1] - beats[0], 1500ms);
  EXPECT_EQ(std::future_status::timeout, stopped.wait_for(0ms));
  heart.Disable();
  EXPECT_EQ(std::future_status::ready, stopped.wait_for(2s));
}

}  // namespace
