// Digital outputs read back through inputs, end-of-arm tools, and a shared arm.
#include <thread>

#include "ControllerFixture.h"

namespace tavsim::test {
namespace {

using Io = ReadyController;

TEST_F(Io, OutputsReadBackOnTheirInputsUntilReset) {
  EXPECT_EQ(state("set_output", {{"motor_ids", R"(["1","2"])"}, {"signal", R"({"1": 0,"2": 1})"}}),
            StateCodes::kOk);
  EXPECT_EQ(state("set_output", {{"motor_ids", R"(["7"])"}, {"signal", R"({"7": 1})"}}),
            StateCodes::kOk);
  EXPECT_EQ(call("get_input", motors(R"(["1","2","3","7"])")).result1, "[0,1,0,1]");
  EXPECT_EQ(state("reset"), StateCodes::kOk);
  EXPECT_EQ(call("get_input", motors(R"(["2","7"])")).result1, "[0,0]");
}

TEST_F(Io, GripperClosesAfterItsTravelAndReportsOnItsSensor) {
  const Params sensors = motors(R"(["9","10"])");
  EXPECT_EQ(state("set_EOAT_action", {{"name", "gripper"}, {"action", "close"}}), StateCodes::kOk);
  clock->Advance(0.25);
  EXPECT_EQ(call("get_input", sensors).result1, "[0,0]");
  clock->Advance(0.3);
  EXPECT_EQ(call("get_input", sensors).result1, "[1,0]");
  EXPECT_EQ(state("set_EOAT_action", {{"name", "vacuum"}, {"action", "on"}}), StateCodes::kOk);
  EXPECT_EQ(state("set_EOAT_action", {{"name", "gripper"}, {"action", "open"}}), StateCodes::kOk);
  clock->Advance(0.2);
  EXPECT_EQ(call("get_input", sensors).result1, "[0,1]");
}

TEST(SharedArm, ClientsOnSeveralThreadsDriveOneArm) {
  SimulatedController controller({10}, std::make_shared<SteadyClock>());  // axes 7 to 10
  controller.Handle("Robot", {{"name", "a"}, {"parameters", "{}"}, {"virtual", "0"}});
  std::vector<std::thread> clients;
  for (int client = 1; client <= 4; ++client) {
    clients.emplace_back([&controller, client] {
      const std::string id = "[\"" + std::to_string(client + 6) + "\"]";
      for (int i = 0; i < 50; ++i) {
        controller.Handle("move_to_angles",
                          moveParams(id, "[" + std::to_string(i % 5) + "]", "180", "2000"));
        controller.Handle("get_current", motors(id));
        controller.Poll();
      }
    });
  }
  for (auto& client : clients) {
    client.join();
  }
  // Every client's last move (to 4 degrees) lands on the one arm.
  Reply wait = controller.Handle("wait_for_motors", motors(R"(["7","8","9","10"])"));
  while (wait.Pending() && controller.Poll().empty()) {
    std::this_thread::sleep_for(
        std::chrono::duration<double>(controller.SecondsUntilNextCompletion().value_or(0.0)));
  }
  EXPECT_EQ(controller.Handle("get_angles", motors(R"(["7","8","9","10"])")).result1,
            "[4.000000,4.000000,4.000000,4.000000]");
}

}  // namespace
}  // namespace tavsim::test
