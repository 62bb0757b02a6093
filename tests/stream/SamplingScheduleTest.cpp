// The monitor's clock arithmetic: slots a late cycle passed are skipped and counted.
#include <gtest/gtest.h>

#include "stream/SamplingSchedule.h"

namespace {

using namespace std::chrono_literals;
using tavclient::SamplingSchedule;

TEST(SamplingScheduleTest, KeepsItsSlotsAndSkipsThoseAnOverrunPassed) {
  const SamplingSchedule::Clock::time_point origin{};
  SamplingSchedule schedule(origin, 10ms);
  EXPECT_EQ(schedule.Next(), origin);
  // On time, or late within the period: the next slot, nothing skipped.
  EXPECT_EQ(schedule.Advance(origin + 3ms), 0u);
  EXPECT_EQ(schedule.Next(), origin + 10ms);
  EXPECT_EQ(schedule.Advance(origin + 19ms), 0u);
  EXPECT_EQ(schedule.Next(), origin + 20ms);
  // A cycle that ends at 57 ms passed the slots of 30, 40 and 50 ms: the next is 60 ms.
  EXPECT_EQ(schedule.Advance(origin + 57ms), 3u);
  EXPECT_EQ(schedule.Next(), origin + 60ms);
  // Ending exactly on a slot misses it: it can no longer be waited for.
  EXPECT_EQ(schedule.Advance(origin + 70ms), 1u);
  EXPECT_EQ(schedule.Next(), origin + 80ms);
}

}  // namespace
