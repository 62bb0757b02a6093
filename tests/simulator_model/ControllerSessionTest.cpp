// The error codes: set-up, state, motors, parameter texts, tools; nothing changes on any of them.
#include "ControllerFixture.h"

namespace tavsim::test {
namespace {

using Session = ControllerFixture;

Params ToolMove(const std::string& pose, const std::string& velocity,
                const std::string& acceleration) {
  return {{"position", pose},
          {"velocity", velocity},
          {"acceleration", acceleration},
          {"relative", "0"},
          {"block", "0"}};
}

struct Refusal {
  const char* name;
  Params params;
  int expected;
};

TEST_F(Session, BadRequestsGetTheirCodeAndChangeNothing) {
  auto expectCodes = [this](const std::vector<Refusal>& rows) {
    for (const Refusal& row : rows) {
      SCOPED_TRACE(row.name + ::testing::PrintToString(row.params));
      EXPECT_EQ(state(row.name, row.params), row.expected);
    }
  };
  const int bad = StateCodes::kBadParameter;
  expectCodes({{"shutdown", {}, StateCodes::kUnknownCommand},
               {"Robot", {{"name", "arm"}, {"parameters", "{not json"}, {"virtual", "0"}}, bad},
               {"Robot", {{"name", "arm"}, {"parameters", "{}"}, {"virtual", "2"}}, bad},
               {"Robot", {{"parameters", "{}"}, {"virtual", "0"}}, bad},
               {"get_angles", motors(R"(["1"])"), StateCodes::kRefusedInState}});
  EXPECT_EQ(controller.Mode(), ControllerMode::Unconfigured);
  ASSERT_EQ(state("Robot", {{"name", ""}, {"parameters", "{}"}, {"virtual", "0"}}),
            StateCodes::kOk);
  ASSERT_EQ(state("set_output", {{"motor_ids", R"(["2"])"}, {"signal", R"({"2": 1})"}}),
            StateCodes::kOk);

  const char* one = R"(["1"])";
  const int unreachable = StateCodes::kUnreachable;
  // The start pose holds the tool at about (-0.392, -0.191, 0.42) pointing down.
  const std::string far = "[1.5,0,0.3,[0,0,0]]";
  const std::string low = "[-0.392,-0.191,-0.05,[3.14159265,0,0]]";
  const std::string across =
      "[[0.392,-0.191,0.42,[3.14159265,0,0]],[0.392,-0.191,0.42,[3.14159265,0,0]]]";
  expectCodes({
      {"inverse", {{"position", far}}, unreachable},
      {"move_to_position", ToolMove(far, "0.1", "1"), unreachable},
      {"moveJ", pathParams("[" + far + "]", "30"), unreachable},
      {"move_to_angles", moveParams(one, "[10]", "180.5", "100"), bad},  // joint speed ceiling
      {"move_to_angles", moveParams(one, "[10]", "100", "2300"), bad},   // joint acceleration
      {"moveJ", pathParams("[]", "181"), bad},
      {"move_to_position", ToolMove(low, "1.01", "1"), bad},   // tool speed
      {"move_to_position", ToolMove(low, "0.1", "151"), bad},  // tool acceleration
      {"moveL", pathParams(across, "1.5"), bad},
      {"move_to_angles", moveParams(R"(["2"])", "[40]", "30", "60"), unreachable},  // elbow too low
      {"move_to_angles", moveParams(R"(["3"])", "[165]", "30", "60"), unreachable},  // elbow folded
      {"move_to_position", ToolMove(low, "0.1", "1"), unreachable},  // tool below the floor
      {"moveL", pathParams(across, "1.0"),
       unreachable},  // the base joint past 180 deg/s near the base
      {"get_angles", motors(R"(["7"])"), StateCodes::kUnknownMotor},
      {"hold", motors(R"(["0"])"), StateCodes::kUnknownMotor},
      {"get_input", motors(R"(["11"])"), StateCodes::kUnknownMotor},
      {"get_angles", motors(R"(["1")"), bad},
      {"get_angles", {}, bad},
      {"move_to_angles", moveParams(one, "[1.0,2.0]", "10", "10"), bad},
      {"move_to_angles", moveParams(one, "[1.0]", "0.000000", "10"), bad},
      {"move_to_angles", moveParams(one, "[1.0]", "10", "10", "2"), bad},
      {"move_to_angles", moveParams(R"(["1","1"])", "[1.0,2.0]", "10", "10"), bad},
      {"move_to_angles", moveParams(one, "[400.0]", "10", "10"), StateCodes::kUnreachable},
      {"move_to_position", ToolMove("[0.0,0.0,0.01,[0.0,0.0,0.0]]", "1e400", "1.0"), bad},
      {"forward", {{"angles", "[0.0,0.0]"}}, bad},
      {"set_output", {{"motor_ids", R"(["2"])"}, {"signal", R"({"2": 5})"}}, bad},
      {"set_output", {{"motor_ids", R"(["2"])"}, {"signal", R"({"3": 0})"}}, bad},
      {"set_output",
       {{"motor_ids", R"(["2","9"])"}, {"signal", R"({"2": 0,"9": 1})"}},
       StateCodes::kUnknownMotor},
      {"set_EOAT_action", {{"name", "gripper"}, {"action", "twist"}}, StateCodes::kUnknownTool},
      {"set_EOAT_action", {{"name", "welder"}, {"action", "open"}}, StateCodes::kUnknownTool},
      {"set_EOAT_action", {{"name", "gripper"}}, bad},
  });
  EXPECT_EQ(query("get_velocity", motors(R"(["1","2","3","4","5","6"])")),
            std::vector<double>(6, 0.0));
  EXPECT_EQ(call("get_input", motors(R"(["2"])")).result1, "[1]");
  EXPECT_EQ(state("moveL", pathParams(across, "0.1")), StateCodes::kOk) << "the same, slower";
}

TEST(LimitOptions, TheFloorAndTheFoldingRuleCanBeMovedOrSwitchedOff) {
  struct Row {
    std::optional<double> floor;
    double foldLimit;
    const char* joint;
    const char* target;
    int expected;
  };
  for (const Row& row : std::vector<Row>{{std::nullopt, 20.0, R"(["2"])", "[40]", StateCodes::kOk},
                                         {0.6, 20.0, R"(["1"])", "[10]", StateCodes::kUnreachable},
                                         {0.0, 0.0, R"(["3"])", "[165]", StateCodes::kOk}}) {
    ControllerOptions options;
    options.limits.floor = row.floor;
    options.limits.foldLimit = row.foldLimit;
    SimulatedController controller(options, std::make_shared<ManualClock>());
    controller.Handle("Robot", {{"name", "arm"}, {"parameters", "{}"}, {"virtual", "0"}});
    Reply reply =
        controller.Handle("move_to_angles", moveParams(row.joint, row.target, "30", "60"));
    EXPECT_EQ(std::stoi(reply.state), row.expected) << row.joint << " to " << row.target;
  }
}

}  // namespace
}  // namespace tavsim::test
