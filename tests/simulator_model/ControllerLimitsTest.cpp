// What a real arm of this class refuses: speeds above its ceilings, postures below the floor or
// folded onto themselves, tool paths that would need a joint too fast. Nothing moves on any.
#include "ControllerFixture.h"

namespace tavsim::test {
namespace {

struct Refusal {
  const char* what;
  const char* name;
  Params params;
  int expected;
};

Params ToolMove(const std::string& pose, const std::string& velocity,
                const std::string& acceleration) {
  return {{"position", pose},
          {"velocity", velocity},
          {"acceleration", acceleration},
          {"relative", "0"},
          {"block", "0"}};
}

Params Line(const std::string& points, const std::string& velocity) {
  return {{"points", points},     {"radius", "[0,0]"}, {"velocity", velocity},
          {"acceleration", "10"}, {"interval", "0"},   {"closed", "0"}};
}

class Limits : public ReadyController {
protected:
  void ExpectRefusals(const std::vector<Refusal>& rows) {
    for (const Refusal& row : rows) {
      SCOPED_TRACE(row.what);
      EXPECT_EQ(state(row.name, row.params), row.expected);
      EXPECT_EQ(query("get_velocity", motors(kArm)), std::vector<double>(6, 0.0));
    }
  }
  static constexpr const char* kArm = R"(["1","2","3","4","5","6"])";
};

TEST_F(Limits, CommandsBeyondTheArmsCeilingsOrPosturesItCannotTakeAreRefused) {
  const int bad = StateCodes::kBadParameter;
  const int unreachable = StateCodes::kUnreachable;
  // The start pose holds the tool at about (-0.392, -0.191, 0.42) pointing down.
  const std::string low = "[-0.392,-0.191,-0.05,[3.14159265,0,0]]";
  const std::string across =
      "[[0.392,-0.191,0.42,[3.14159265,0,0]],[0.392,-0.191,0.42,[3.14159265,0,0]]]";
  ExpectRefusals({
      {"joint speed", "move_to_angles", moveParams(R"(["1"])", "[10]", "180.5", "100"), bad},
      {"joint acceleration", "move_to_angles", moveParams(R"(["1"])", "[10]", "100", "2300"), bad},
      {"joint speed of a joint path",
       "moveJ",
       {{"points", "[]"},
        {"velocity", "181"},
        {"acceleration", "100"},
        {"interval", "0"},
        {"closed", "0"}},
       bad},
      {"tool speed", "move_to_position", ToolMove(low, "1.01", "1"), bad},
      {"tool acceleration", "move_to_position", ToolMove(low, "0.1", "151"), bad},
      {"tool speed of a path", "moveL", Line(across, "1.5"), bad},
      {"elbow below the floor", "move_to_angles", moveParams(R"(["2"])", "[40]", "30", "60"),
       unreachable},
      {"elbow folded", "move_to_angles", moveParams(R"(["3"])", "[165]", "30", "60"), unreachable},
      {"tool below the floor", "move_to_position", ToolMove(low, "0.1", "1"), unreachable},
      {"base joint past 180 deg/s on the way", "moveL", Line(across, "1.0"), unreachable},
  });
  EXPECT_EQ(state("moveL", Line(across, "0.1")), StateCodes::kOk) << "the same path, slower";
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
                                         {0.0, 0.0, R"(["3"])", "[165]", StateCodes::kOk},
                                         {0.0, 5.0, R"(["3"])", "[165]", StateCodes::kOk}}) {
    ControllerOptions options;
    options.limits.floor = row.floor;
    options.limits.foldLimit = row.foldLimit;
    SimulatedController controller(options, std::make_shared<ManualClock>());
    controller.Handle("Robot", {{"name", "arm"}, {"parameters", "{}"}, {"virtual", "0"}});
    EXPECT_EQ(
        std::stoi(controller.Handle("move_to_angles", moveParams(row.joint, row.target, "30", "60"))
                      .state),
        row.expected)
        << row.joint << " to " << row.target;
  }
}

}  // namespace
}  // namespace tavsim::test
