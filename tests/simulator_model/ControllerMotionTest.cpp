// Joint motion in time, waiting, stopping, holding and releasing, currents.
#include "ControllerFixture.h"

namespace tavsim::test {
namespace {

class Motion : public ControllerFixture {
protected:
  void SetUp() override { setUpRobot(); }

  const Params motor1{{"motor_ids", R"(["1"])"}};
};

TEST_F(Motion, MoveTakesTheTimeItsLimitsImplyAndWaitEndsOnArrival) {
  // 90 degrees at 30 deg/s with 60 deg/s^2: 0.5 s ramps and 2.5 s cruise.
  ASSERT_EQ(state("move_to_angles", moveParams(R"(["1"])", "[90.000000]", "30.000000",
                                               "60.000000")),
            StateCodes::kOk);
  Reply wait = call("wait_for_motors", motor1);
  ASSERT_TRUE(wait.pending());
  EXPECT_NEAR(controller.secondsUntilNextCompletion().value(), 3.5, 1e-9);

  clock->advance(1.75);
  EXPECT_TRUE(controller.poll().empty());
  EXPECT_NEAR(query("get_velocity", motor1)[0], 30.0, 1e-3);
  EXPECT_NEAR(query("get_angles", motor1)[0], 45.0, 1e-6);

  clock->advance(1.75 * 0.9);
  EXPECT_TRUE(controller.poll().empty());
  EXPECT_GT(query("get_velocity", motor1)[0], 0.0);

  clock->advance(3.5 * 0.2);
  auto finished = controller.poll();
  ASSERT_EQ(finished.size(), 1u);
  EXPECT_EQ(finished[0].ticket, wait.ticket);
  EXPECT_EQ(finished[0].reply.state, "0");
  EXPECT_EQ(query("get_angles", motor1), (std::vector<double>{90.0}));
  EXPECT_EQ(query("get_velocity", motor1), (std::vector<double>{0.0}));
  EXPECT_FALSE(controller.secondsUntilNextCompletion().has_value());
}

TEST_F(Motion, RelativeMovesOfSeveralMotorsArriveTogether) {
  std::vector<double> before = query("get_angles", {{"motor_ids", R"(["2","3"])"}});
  ASSERT_EQ(state("move_to_angles", moveParams(R"(["2","3"])", "[10.000000,-20.000000]",
                                               "10.000000", "20.000000", "1")),
            StateCodes::kOk);
  clock->advance(1.0);
  std::vector<double> mid = query("get_angles", {{"motor_ids", R"(["2","3"])"}});
  // Synchronised: both have covered the same share of their way.
  EXPECT_NEAR((mid[0] - before[0]) / 10.0, (mid[1] - before[1]) / -20.0, 1e-9);
  EXPECT_TRUE(call("wait_for_motors", {{"motor_ids", R"(["2"])"}}).pending());
  clock->advance(10.0);
  EXPECT_TRUE(controller.poll().size() == 1);
  std::vector<double> after = query("get_angles", {{"motor_ids", R"(["2","3"])"}});
  EXPECT_NEAR(after[0], before[0] + 10.0, 1e-6);
  EXPECT_NEAR(after[1], before[1] - 20.0, 1e-6);
  // A motor at rest is waited for at once.
  EXPECT_EQ(state("wait_for_motors", {{"motor_ids", R"(["4","5"])"}}), StateCodes::kOk);
}

TEST_F(Motion, BlockingMoveRepliesOnArrival) {
  Params params = moveParams(R"(["6"])", "[30.0]", "30.0", "300.0");
  params["block"] = "1";
  Reply reply = call("move_to_angles", params);
  ASSERT_TRUE(reply.pending());
  clock->advance(1.2);
  auto finished = controller.poll();
  ASSERT_EQ(finished.size(), 1u);
  EXPECT_EQ(finished[0].reply.state, "0");
}

TEST_F(Motion, StopHaltsWhereTheArmIsAndInterruptsWaits) {
  ASSERT_EQ(state("move_to_angles", moveParams(R"(["1"])", "[90.0]", "30.0", "60.0")),
            StateCodes::kOk);
  Reply wait = call("wait_for_motors", motor1);
  clock->advance(2.0);
  EXPECT_EQ(state("stop"), StateCodes::kOk);
  auto finished = controller.poll();
  ASSERT_EQ(finished.size(), 1u);
  EXPECT_EQ(finished[0].ticket, wait.ticket);
  EXPECT_EQ(std::stoi(finished[0].reply.state), StateCodes::kMotionInterrupted);
  double stoppedAt = query("get_angles", motor1)[0];
  EXPECT_NEAR(stoppedAt, 52.5, 1e-6);
  clock->advance(5.0);
  EXPECT_EQ(query("get_angles", motor1)[0], stoppedAt);
  EXPECT_EQ(query("get_velocity", motor1)[0], 0.0);
}

TEST_F(Motion, ANewMoveTakesOverFromWhereTheMotorIs) {
  ASSERT_EQ(state("move_to_angles", moveParams(R"(["1"])", "[90.0]", "30.0", "60.0")),
            StateCodes::kOk);
  Reply wait = call("wait_for_motors", motor1);
  clock->advance(2.0);
  ASSERT_EQ(state("move_to_angles", moveParams(R"(["1"])", "[0.0]", "30.0", "60.0")),
            StateCodes::kOk);
  clock->advance(0.01);
  EXPECT_LT(query("get_angles", motor1)[0], 52.5 + 1e-9);
  EXPECT_TRUE(controller.poll().empty());  // the wait follows the new target
  clock->advance(10.0);
  auto finished = controller.poll();
  ASSERT_EQ(finished.size(), 1u);
  EXPECT_EQ(finished[0].ticket, wait.ticket);
  EXPECT_NEAR(query("get_angles", motor1)[0], 0.0, 1e-9);
}

TEST_F(Motion, HoldStopsAMotorAndReleaseMakesItLimp) {
  ASSERT_EQ(state("move_to_angles", moveParams(R"(["1","2"])", "[40.0,40.0]", "20.0", "40.0")),
            StateCodes::kOk);
  clock->advance(1.0);
  EXPECT_EQ(state("hold", {{"motor_ids", R"(["2"])"}}), StateCodes::kOk);
  // The whole coordinated move stops, not only the held motor.
  std::vector<double> held = query("get_angles", {{"motor_ids", R"(["1","2"])"}});
  clock->advance(3.0);
  EXPECT_EQ(query("get_angles", {{"motor_ids", R"(["1","2"])"}}), held);

  EXPECT_EQ(state("release", motor1), StateCodes::kOk);
  EXPECT_EQ(query("get_current", motor1), (std::vector<double>{0.0}));
  EXPECT_EQ(state("move_to_angles", moveParams(R"(["1"])", "[0.0]", "20.0", "40.0")),
            StateCodes::kMotorReleased);
  EXPECT_EQ(state("moveJ", {{"points", "[]"}, {"velocity", "10"}, {"acceleration", "10"},
                            {"interval", "0"}, {"closed", "0"}}),
            StateCodes::kMotorReleased);
  EXPECT_EQ(state("wait_for_motors", motor1), StateCodes::kOk);
  EXPECT_EQ(state("hold", motor1), StateCodes::kOk);
  EXPECT_GT(query("get_current", motor1)[0], 0.0);
  EXPECT_EQ(state("move_to_angles", moveParams(R"(["1"])", "[0.0]", "20.0", "40.0")),
            StateCodes::kOk);
}

TEST_F(Motion, CurrentsFollowLoadAndAcceleration) {
  double resting = query("get_current", motor1)[0];
  EXPECT_NEAR(resting, CurrentModel::kIdleAmps, 1e-9);  // vertical axis: no gravity load
  // The shoulder carries the arm against gravity.
  EXPECT_GT(query("get_current", {{"motor_ids", R"(["2"])"}})[0], resting + 0.5);

  ASSERT_EQ(state("move_to_angles", moveParams(R"(["1"])", "[90.0]", "30.0", "60.0")),
            StateCodes::kOk);
  clock->advance(0.25);
  double accelerating = query("get_current", motor1)[0];
  clock->advance(1.5);
  double cruising = query("get_current", motor1)[0];
  EXPECT_GT(accelerating, cruising);
  EXPECT_GT(cruising, resting);
  // The multi-motor current query travels as "get_angles"; that answers angles.
  EXPECT_NEAR(query("get_angles", motor1)[0], 45.0, 1e-6);
}

}  // namespace
}  // namespace tavsim::test
