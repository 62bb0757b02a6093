#include <gtest/gtest.h>

#include "thread/TavThread.h"

namespace {

class CountingThread : public Tavthread::TavThread {
public:
  void Run() override { ++runs; }

  int runs = 0;
};

// The workers join in both their stop and their destructor: only the first join of a started
// thread may reach pthread_join, whose handle is dead after it.
TEST(TavThreadTest, JoinsAThreadItStartedOnceAndNoOtherTime) {
  CountingThread thread;
  EXPECT_FALSE(thread.Join()) << "never started";
  ASSERT_TRUE(thread.Start());
  ASSERT_TRUE(thread.Join());
  EXPECT_EQ(thread.runs, 1);
  EXPECT_FALSE(thread.Join()) << "a joined thread is not joined twice";
}

}  // namespace
