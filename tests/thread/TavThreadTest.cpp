#include <gtest/gtest.h>
#include <pthread.h>

#include "thread/TavThread.h"

namespace {

// Records what its thread saw: the value the owner set before Start and whether it ran on a
// thread of its own.
class ObservingThread : public Tavthread::TavThread {
public:
  void Run() override {
    seenValue = valueBeforeStart;
    ranOnOwnThread = pthread_equal(pthread_self(), owner) == 0;
  }

  const pthread_t owner = pthread_self();
  int valueBeforeStart = 0;
  int seenValue = 0;
  bool ranOnOwnThread = false;
};

TEST(TavThreadTest, RunsRunOnANewThreadThatSeesTheOwnersState) {
  ObservingThread thread;
  thread.valueBeforeStart = 42;
  ASSERT_TRUE(thread.Start());
  ASSERT_TRUE(thread.Join());
  EXPECT_EQ(thread.seenValue, 42);
  EXPECT_TRUE(thread.ranOnOwnThread);
  EXPECT_FALSE(thread.Join()) << "a joined thread is not joined twice";
}

}  // namespace
