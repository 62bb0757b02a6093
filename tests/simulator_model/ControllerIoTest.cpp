// Digital outputs read back through inputs, end-of-arm tools, and a shared arm.
#include <thread>

#include "ControllerFixture.h"

namespace tavsim::test {
namespace {

class Io : public ControllerFixture {
protected:
  void SetUp() override { setUpRobot(); }
};

TEST_F(Io, OutputsReadBackOnTheirInputs) {
  EXPECT_EQ(state("set_output", {{"motor_ids", R"(["1","2"])"}, {"signal", R"({"1": 0,"2": 1})"}}),
            StateCodes::kOk);
  EXPECT_EQ(state("set_output", {{"motor_ids", R"(["7"])"}, {"signal", R"({"7": 1})"}}),
            StateCodes::kOk);
  EXPECT_EQ(call("get_input", {{"motor_ids", R"(["1","2","3","7"])"}}).result1, "[0,1,0,1]");

  // Faulty requests change nothing.
  EXPECT_EQ(state("set_output", {{"motor_ids", R"(["2"])"}, {"signal", R"({"2": 5})"}}),
            StateCodes::kBadParameter);
  EXPECT_EQ(state("set_output", {{"motor_ids", R"(["2"])"}, {"signal", R"({"3": 0})"}}),
            StateCodes::kBadParameter);
  EXPECT_EQ(state("set_output", {{"motor_ids", R"(["2","9"])"}, {"signal", R"({"2": 0,"9": 1})"}}),
            StateCodes::kUnknownMotor);
  EXPECT_EQ(state("get_input", {{"motor_ids", R"(["11"])"}}), StateCodes::kUnknownMotor);
  EXPECT_EQ(call("get_input", {{"motor_ids", R"(["2"])"}}).result1, "[1]");

  EXPECT_EQ(state("reset"), StateCodes::kOk);
  EXPECT_EQ(call("get_input", {{"motor_ids", R"(["2","7"])"}}).result1, "[0,0]");
}

TEST_F(Io, GripperClosesAfterItsTravelAndReportsOnItsSensor) {
  const Params sensors{{"motor_ids", R"(["9","10"])"}};
  EXPECT_EQ(call("get_input", sensors).result1, "[0,0]");
  EXPECT_EQ(state("set_EOAT_action", {{"name", "gripper"}, {"action", "close"}}), StateCodes::kOk);
  clock->advance(0.25);
  EXPECT_EQ(call("get_input", sensors).result1, "[0,0]");
  clock->advance(0.3);
  EXPECT_EQ(call("get_input", sensors).result1, "[1,0]");
  EXPECT_EQ(state("set_EOAT_action", {{"name", "vacuum"}, {"action", "on"}}), StateCodes::kOk);
  EXPECT_EQ(state("set_EOAT_action", {{"name", "gripper"}, {"action", "open"}}), StateCodes::kOk);
  clock->advance(0.2);
  EXPECT_EQ(call("get_input", sensors).result1, "[0,1]");

  EXPECT_EQ(state("set_EOAT_action", {{"name", "gripper"}, {"action", "twist"}}),
            StateCodes::kUnknownTool);
  EXPECT_EQ(state("set_EOAT_action", {{"name", "welder"}, {"action", "open"}}),
            StateCodes::kUnknownTool);
  EXPECT_EQ(state("set_EOAT_action", {{"name", "gripper"}}), StateCodes::kBadParameter);
}

TEST(SharedArm, ClientsOnSeveralThreadsDriveOneArm) {
  SimulatedController controller({}, std::make_shared<SteadyClock>());
  controller.handle("Robot", {{"name", "a"}, {"parameters", "{}"}, {"virtual", "0"}});
  std::vector<std::thread> clients;
  for (int client = 1; client <= 4; ++client) {
    clients.emplace_back([&controller, client] {
      std::string id = "[\"" + std::to_string(client) + "\"]";
      for (int i = 0; i < 50; ++i) {
        controller.handle("move_to_angles", {{"motor_ids", id},
                                             {"position", "[" + std::to_string(i % 5) + "]"},
                                             {"velocity", "1000"},
                                             {"acceleration", "100000"},
                                             {"relative", "0"},
                                             {"block", "0"}});
        controller.handle("get_current", {{"motor_ids", id}});
        controller.poll();
      }
    });
  }
  for (auto& client : clients) {
    client.join();
  }
  // Every client's last move (to 4 degrees) lands on the one arm.
  Reply wait = controller.handle("wait_for_motors", {{"motor_ids", R"(["1","2","3","4"])"}});
  while (wait.pending() && controller.poll().empty()) {
    std::this_thread::sleep_for(std::chrono::duration<double>(
        controller.secondsUntilNextCompletion().value_or(0.0)));
  }
  EXPECT_EQ(controller.handle("get_angles", {{"motor_ids", R"(["1","2","3","4"])"}}).result1,
            "[4.000000,4.000000,4.000000,4.000000]");
}

}  // namespace
}  // namespace tavsim::test
