// Set-up, motor discovery, the controller's state machine and the error codes.
#include <algorithm>

#include "ControllerFixture.h"

namespace tavsim::test {
namespace {

using Session = ControllerFixture;

TEST_F(Session, MotorIdsAppearWithSetUpAndGoWithFinalize) {
  EXPECT_EQ(call("get_motor_ids").result1, "[]");
  EXPECT_EQ(state("get_angles", {{"motor_ids", R"(["1"])"}}), StateCodes::kRefusedInState);
  setUpRobot();
  Reply ids = call("get_motor_ids");
  EXPECT_EQ(ids.state, "0");
  EXPECT_EQ(ids.result1, "[1,2,3,4,5,6]");
  EXPECT_EQ(controller.mode(), ControllerMode::Ready);

  EXPECT_EQ(state("finalize"), StateCodes::kOk);
  EXPECT_EQ(controller.mode(), ControllerMode::Unconfigured);
  EXPECT_EQ(call("get_motor_ids").result1, "[]");
  EXPECT_EQ(state("move_to_angles", moveParams(R"(["1"])", "[1.0]", "10", "10")),
            StateCodes::kRefusedInState);
}

TEST_F(Session, SetUpChecksItsParameters) {
  EXPECT_EQ(state("Robot", {{"name", "arm"}, {"parameters", "{not json"}, {"virtual", "0"}}),
            StateCodes::kBadParameter);
  EXPECT_EQ(state("Robot", {{"name", "arm"}, {"parameters", "{}"}, {"virtual", "2"}}),
            StateCodes::kBadParameter);
  EXPECT_EQ(state("Robot", {{"parameters", "{}"}, {"virtual", "0"}}), StateCodes::kBadParameter);
  EXPECT_EQ(controller.mode(), ControllerMode::Unconfigured);
  EXPECT_EQ(state("Robot", {{"name", ""}, {"parameters", "{}"}, {"virtual", "0"}}),
            StateCodes::kOk);
}

TEST_F(Session, StopRefusesMotionUntilRecoverButQueriesGoOn) {
  setUpRobot();
  EXPECT_EQ(state("stop"), StateCodes::kOk);
  EXPECT_EQ(controller.mode(), ControllerMode::Stopped);
  EXPECT_EQ(state("move_to_angles", moveParams(R"(["1"])", "[10.0]", "10", "10")),
            StateCodes::kRefusedInState);
  EXPECT_EQ(query("get_angles", {{"motor_ids", R"(["1"])"}}).size(), 1u);
  EXPECT_EQ(state("recover"), StateCodes::kOk);
  EXPECT_EQ(state("move_to_angles", moveParams(R"(["1"])", "[10.0]", "10", "10")),
            StateCodes::kOk);
  // Calibration needs the arm at rest.
  EXPECT_EQ(state("calibrate"), StateCodes::kRefusedInState);
  clock->advance(5.0);
  EXPECT_EQ(state("calibrate"), StateCodes::kOk);
}

TEST_F(Session, ErrorCodesForUnknownCommandsMotorsAndBadTexts) {
  EXPECT_EQ(state("shutdown"), StateCodes::kUnknownCommand);
  setUpRobot();
  EXPECT_EQ(state("get_angles", {{"motor_ids", R"(["7"])"}}), StateCodes::kUnknownMotor);
  EXPECT_EQ(state("hold", {{"motor_ids", R"(["0"])"}}), StateCodes::kUnknownMotor);
  EXPECT_EQ(state("get_angles", {{"motor_ids", R"(["1")"}}), StateCodes::kBadParameter);
  EXPECT_EQ(state("get_angles"), StateCodes::kBadParameter);
  const char* one = R"(["1"])";
  EXPECT_EQ(state("move_to_angles", moveParams(one, "[1.0,2.0]", "10", "10")),
            StateCodes::kBadParameter);
  EXPECT_EQ(state("move_to_angles", moveParams(one, "[1.0]", "0.000000", "10")),
            StateCodes::kBadParameter);
  EXPECT_EQ(state("move_to_angles", moveParams(one, "[1.0]", "10", "10", "2")),
            StateCodes::kBadParameter);
  EXPECT_EQ(state("move_to_angles", moveParams(R"(["1","1"])", "[1.0,2.0]", "10", "10")),
            StateCodes::kBadParameter);
  EXPECT_EQ(state("move_to_angles", moveParams(one, "[400.0]", "10", "10")),
            StateCodes::kUnreachable);
  EXPECT_EQ(state("forward", {{"angles", "[0.0,0.0]"}}), StateCodes::kBadParameter);
  EXPECT_EQ(state("moveL", {{"points", "[]"}, {"velocity", "0.1"}, {"acceleration", "0.1"},
                            {"interval", "0"}, {"closed", "0"}}),
            StateCodes::kBadParameter);  // no "radius"
  // Nothing moved on any of these.
  EXPECT_EQ(query("get_velocity", {{"motor_ids", one}}), (std::vector<double>{0.0}));
}

TEST(SessionOptions, MotorCountIsConfigurable) {
  ControllerOptions options;
  options.motorCount = 8;
  SimulatedController controller(options, std::make_shared<ManualClock>());
  controller.handle("Robot", {{"name", "a"}, {"parameters", "{}"}, {"virtual", "0"}});
  EXPECT_EQ(controller.handle("get_motor_ids", {}).result1, "[1,2,3,4,5,6,7,8]");
  // Six arm joints, then the two auxiliary axes.
  Reply pose = controller.handle("get_position", {});
  Reply joints = controller.handle("inverse", {{"position", pose.result1}});
  EXPECT_EQ(joints.state, "0");
  EXPECT_EQ(std::count(joints.result1.begin(), joints.result1.end(), ','), 7);
}

}  // namespace
}  // namespace tavsim::test
