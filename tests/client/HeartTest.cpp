#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

#include "client/Heart.h"
#include "support/ProcessProbe.h"

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

// The times at which the heart called back.
class Beats {
public:
  static void Record() {
    {
      std::lock_guard<std::mutex> lock(mutex);
      times.push_back(Clock::now());
    }
    changed.notify_all();
  }

  static std::vector<Clock::time_point> WaitFor(std::size_t count, std::chrono::milliseconds wait) {
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait_for(lock, wait, [count] { return times.size() >= count; });
    return times;
  }

  static void Clear() {
    std::lock_guard<std::mutex> lock(mutex);
    times.clear();
  }

private:
  static inline std::mutex mutex;
  static inline std::condition_variable changed;
  static inline std::vector<Clock::time_point> times;
};

class HeartTest : public ::testing::Test {
protected:
  void SetUp() override { Beats::Clear(); }

  static void Run(Heart& heart) {
    heart.HeartEventRegister(&Beats::Record);
    heart.Start();
  }
};

TEST_F(HeartTest, EnabledHeartWaitsForItsPeriodWithoutBurningCpu) {
  Heart heart;
  Run(heart);
  heart.Enable();
  const double cpuBefore = tavtest::ProcessCpuSeconds();
  std::this_thread::sleep_for(3s);
  EXPECT_LT(tavtest::ProcessCpuSeconds() - cpuBefore, 0.05);
  EXPECT_TRUE(Beats::WaitFor(1, 0ms).empty()) << "no beat before the 9-second period ends";
  heart.Disable();
}

TEST_F(HeartTest, DisableAndReenableRestartsThePeriod) {
  Heart heart(1000ms);
  Run(heart);
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

TEST_F(HeartTest, StopOfAnEnabledHeartBlocksUntilDisable) {
  Heart heart;
  Run(heart);
  heart.Enable();
  std::future<void> stopped = std::async(std::launch::async, [&heart] { heart.Stop(); });
  // Longer than an idle check: a heart that looked at its running flag would have ended.
  EXPECT_EQ(std::future_status::timeout, stopped.wait_for(1500ms));
  heart.Disable();
  EXPECT_EQ(std::future_status::ready, stopped.wait_for(2s));
}

}  // namespace
