#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <string>

#include "client/ReplyStore.h"
#include "common/RobotEvent.h"

namespace {

using Message = ReplyStore::Message;
using Clock = ReplyStore::Clock;
using namespace std::chrono_literals;

// A call of a closed connection that gives up late must not drop the reply of the same name
// that the next session (its login: "ConnResult") announced meanwhile.
TEST(ReplyStoreTest, GivingUpUnderAnOldTicketLeavesANewAnnouncementAlone) {
  ReplyStore store;
  const std::uint64_t old = store.Expect("ConnResult");
  store.Expect("ConnResult");
  store.Abandon("ConnResult", old);
  EXPECT_EQ(ReplyStore::Filing::kAsked, store.File("ConnResult", {{"result", "0"}}).filing);
  Message reply;
  EXPECT_EQ(RobotEvents::kSuccess, store.Take("ConnResult", reply));
  EXPECT_EQ("0", reply["result"]);
}

// Two calls waiting for one name (a heartbeat asked twice) take one reply each.
TEST(ReplyStoreTest, EachReplyOfANameGoesToOneWaiter) {
  ReplyStore store;
  const auto wait = [&store](Message& reply) {
    const auto deadline = Clock::now() + 5s;
    while (Clock::now() < deadline) {
      if (store.Wait(
              "heart", reply, [] { return false; }, [deadline] { return deadline; }) == 0) {
        return RobotEvents::kSuccess;
      }
    }
    return RobotEvents::kReplyTimeout;
  };
  Message first;
  Message second;
  std::future<int> one = std::async(std::launch::async, [&] { return wait(first); });
  std::future<int> other = std::async(std::launch::async, [&] { return wait(second); });
  store.Watch("heart");
  store.File("heart", {{"n", "1"}});
  // The second reply is filed only once the first was taken: a filed name keeps its first.
  while (one.wait_for(1ms) != std::future_status::ready &&
         other.wait_for(1ms) != std::future_status::ready) {
  }
  store.File("heart", {{"n", "2"}});
  EXPECT_EQ(RobotEvents::kSuccess, one.get());
  EXPECT_EQ(RobotEvents::kSuccess, other.get());
  EXPECT_EQ(3, std::stoi(first["n"]) + std::stoi(second["n"]));
}

}  // namespace
