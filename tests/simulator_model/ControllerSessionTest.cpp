// The error codes: set-up, state, motors, parameter texts, tools; nothing changes on any of them.
#include "ControllerFixture.h"

namespace tavsim::test {
namespace {

using Session = ControllerFixture;

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
  expectCodes({
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
      {"move_to_position",
       {{"position", "[0.0,0.0,0.01,[0.0,0.0,0.0]]"},
        {"velocity", "1e400"},
        {"acceleration", "1.0"},
        {"relative", "1"},
        {"block", "0"}},
       bad},
      {"forward", {{"angles", "[0.0,0.0]"}}, bad},
      {"moveL",
       {{"points", "[]"},
        {"velocity", "0.1"},
        {"acceleration", "0.1"},
        {"interval", "0"},
        {"closed", "0"}},
       bad},  // no "radius"
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
}

}  // namespace
}  // namespace tavsim::test
