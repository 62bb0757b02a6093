// Joint motion in time, waiting, stopping, holding and releasing, currents.
#include "ControllerFixture.h"

namespace tavsim::test {
namespace {

using Motion = ReadyController;
const char* const kOne = R"(["1"])";

TEST_F(Motion, MoveTakesTheTimeItsLimitsImplyAndWaitEndsOnArrival) {
  const double resting = query("get_current", motors(kOne))[0];
  EXPECT_NEAR(resting, CurrentModel::kIdleAmps, 1e-9);  // vertical axis: no gravity load
  // 90 degrees at 30 deg/s with 60 deg/s^2: 0.5 s ramps and 2.5 s cruise.
  ASSERT_EQ(state("move_to_angles", moveParams(kOne, "[90.000000]", "30.000000", "60.000000")),
            StateCodes::kOk);
  Reply wait = call("wait_for_motors", motors(kOne));
  ASSERT_TRUE(wait.Pending());
  EXPECT_NEAR(controller.SecondsUntilNextCompletion().value(), 3.5, 1e-9);
  clock->Advance(1.75);
  EXPECT_TRUE(controller.Poll().empty());
  EXPECT_NEAR(query("get_velocity", motors(kOne))[0], 30.0, 1e-3);
  EXPECT_NEAR(query("get_angles", motors(kOne))[0], 45.0, 1e-6);
  EXPECT_GT(query("get_current", motors(kOne))[0], resting);
  clock->Advance(1.75 - 1e-9);
  EXPECT_TRUE(controller.Poll().empty());
  clock->Advance(1e-9);
  auto finished = controller.Poll();
  ASSERT_EQ(finished.size(), 1u);
  EXPECT_EQ(finished[0].ticket, wait.ticket);
  EXPECT_EQ(finished[0].reply.state, "0");
  EXPECT_EQ(query("get_angles", motors(kOne)), (std::vector<double>{90.0}));
  EXPECT_EQ(query("get_velocity", motors(kOne)), (std::vector<double>{0.0}));
  EXPECT_FALSE(controller.SecondsUntilNextCompletion().has_value());
}

TEST_F(Motion, EachWaitEndsWhenItsOwnMotorsArriveAndCoordinatedMotorsArriveTogether) {
  ASSERT_EQ(state("move_to_angles", moveParams(kOne, "[90.0]", "30.0", "60.0")),
            StateCodes::kOk);  // 3.5 s
  Reply first = call("wait_for_motors", motors(kOne));
  const Params pair = motors(R"(["2","3"])");
  const std::vector<double> before = query("get_angles", pair);
  // Relative; the longer way sets the time: 20 degrees at 10 deg/s with 20 deg/s^2 take 2.5 s.
  ASSERT_EQ(
      state("move_to_angles", moveParams(R"(["2","3"])", "[10.0,-20.0]", "10.0", "20.0", "1")),
      StateCodes::kOk);
  Reply second = call("wait_for_motors", motors(R"(["2"])"));
  EXPECT_EQ(state("wait_for_motors", motors(R"(["4","5"])")), StateCodes::kOk) << "motors at rest";
  clock->Advance(2.6);
  auto finished = controller.Poll();
  ASSERT_EQ(finished.size(), 1u);
  EXPECT_EQ(finished[0].ticket, second.ticket) << "a later wait is not held up by an earlier one";
  const std::vector<double> after = query("get_angles", pair);
  EXPECT_NEAR(after[0], before[0] + 10.0, 1e-6);
  EXPECT_NEAR(after[1], before[1] - 20.0, 1e-6);
  clock->Advance(1.0);
  finished = controller.Poll();
  ASSERT_EQ(finished.size(), 1u);
  EXPECT_EQ(finished[0].ticket, first.ticket);
}

// Each brakes from 30 deg/s at 60 deg/s^2: 0.5 s and 7.5 degrees beyond the 52.5 covered.
TEST_F(Motion, StopHoldAndReleaseBrakeAtTheMovesAccelerationAndWaitsEndWhenTheJointStands) {
  for (const std::string halt : {"hold", "release", "stop"}) {
    SCOPED_TRACE(halt);
    ASSERT_EQ(state("recover") + state("hold", motors(kOne)), StateCodes::kOk);
    const double from = query("get_angles", motors(kOne))[0];
    ASSERT_EQ(state("move_to_angles", moveParams(kOne, "[90.0]", "30.0", "60.0", "1")),
              StateCodes::kOk);
    ASSERT_TRUE(call("wait_for_motors", motors(kOne)).Pending());
    clock->Advance(2.0);
    ASSERT_EQ(state(halt, halt == "stop" ? Params{} : motors(kOne)), StateCodes::kOk);
    clock->Advance(0.25);
    EXPECT_TRUE(controller.Poll().empty()) << "still braking";
    EXPECT_NEAR(query("get_velocity", motors(kOne))[0], 15.0, 1e-6);
    clock->Advance(0.25);
    auto finished = controller.Poll();
    ASSERT_EQ(finished.size(), 1u);
    EXPECT_EQ(std::stoi(finished[0].reply.state), StateCodes::kMotionInterrupted);
    EXPECT_NEAR(query("get_angles", motors(kOne))[0], from + 60.0, 1e-6);
  }
  EXPECT_EQ(state("recover") + state("move_to_angles", moveParams(kOne, "[10.0]", "10", "10")),
            StateCodes::kOk);
  EXPECT_EQ(state("calibrate"), StateCodes::kRefusedInState) << "calibration needs the arm at rest";
}

TEST_F(Motion, ANewMoveStartsFromTheJointsSpeed) {
  ASSERT_EQ(state("move_to_angles", moveParams(kOne, "[90.0]", "30.0", "60.0")), StateCodes::kOk);
  ASSERT_TRUE(call("wait_for_motors", motors(kOne)).Pending());
  clock->Advance(2.0);  // at 52.5 and 30 deg/s
  ASSERT_EQ(state("move_to_angles", moveParams(kOne, "[120.0]", "60.0", "60.0")), StateCodes::kOk);
  EXPECT_NEAR(query("get_velocity", motors(kOne))[0], 30.0, 1e-6) << "not from rest";
  // 30 to 60 deg/s over 22.5 degrees, 15 degrees of cruise, 30 degrees to stop.
  EXPECT_NEAR(controller.SecondsUntilNextCompletion().value(), 0.5 + 0.25 + 1.0, 1e-9);
}

// A wait on the motor ends when the move that took it over ends.
TEST_F(Motion, AMoveBackBrakesBeforeItTurnsAndTheWaitFollowsIt) {
  ASSERT_EQ(state("move_to_angles", moveParams(kOne, "[90.0]", "30.0", "60.0")), StateCodes::kOk);
  Reply wait = call("wait_for_motors", motors(kOne));
  clock->Advance(2.0);  // at 52.5 and 30 deg/s
  const double turn = query("get_angles", motors(kOne))[0];
  ASSERT_EQ(state("move_to_angles", moveParams(kOne, "[0.0]", "30.0", "60.0")), StateCodes::kOk);
  clock->Advance(0.25);
  EXPECT_GT(query("get_angles", motors(kOne))[0], turn) << "brakes before it turns back";
  clock->Advance(10.0);
  auto finished = controller.Poll();
  ASSERT_EQ(finished.size(), 1u);
  EXPECT_EQ(finished[0].ticket, wait.ticket);
  EXPECT_EQ(finished[0].reply.state, "0");
  EXPECT_NEAR(query("get_angles", motors(kOne))[0], 0.0, 1e-9);
}

TEST_F(Motion, HoldBrakesTheWholeMoveOfTheMotorsItNames) {
  ASSERT_EQ(state("move_to_angles", moveParams(R"(["1","2"])", "[40.0,-80.0]", "20.0", "40.0")),
            StateCodes::kOk);
  clock->Advance(1.0);
  EXPECT_EQ(state("hold", motors(R"(["2"])")), StateCodes::kOk);
  clock->Advance(3.0);
  // Both stop together on the move's line: 15 + 5 degrees, a quarter of that for joint 2.
  EXPECT_EQ(call("get_angles", motors(R"(["1","2"])")).result1, "[20.000000,-85.000000]");
}

TEST_F(Motion, AReleasedMotorIsLimpAndRefusesMovesUntilHeld) {
  EXPECT_EQ(state("release", motors(kOne)), StateCodes::kOk);
  EXPECT_EQ(query("get_current", motors(kOne)), (std::vector<double>{0.0}));
  EXPECT_EQ(state("move_to_angles", moveParams(kOne, "[0.0]", "20.0", "40.0")),
            StateCodes::kMotorReleased);
  EXPECT_EQ(state("moveJ", pathParams("[]", "10")), StateCodes::kMotorReleased);
  EXPECT_EQ(state("hold", motors(kOne)), StateCodes::kOk);
  EXPECT_GT(query("get_current", motors(kOne))[0], 0.0);
  EXPECT_EQ(state("move_to_angles", moveParams(kOne, "[0.0]", "20.0", "40.0")), StateCodes::kOk);
}

}  // namespace
}  // namespace tavsim::test
