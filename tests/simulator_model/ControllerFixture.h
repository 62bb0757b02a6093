#ifndef TAVSIM_TESTS_CONTROLLERFIXTURE_H
#define TAVSIM_TESTS_CONTROLLERFIXTURE_H

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "model/Clock.h"
#include "model/SimulatedController.h"
#include "model/StateCodes.h"

namespace tavsim::test {

inline Params motors(const std::string& ids) { return {{"motor_ids", ids}}; }

inline Params moveParams(const std::string& ids, const std::string& positions,
                         const std::string& velocity, const std::string& acceleration,
                         const std::string& relative = "0") {
  return {{"motor_ids", ids},     {"position", positions},
          {"velocity", velocity}, {"acceleration", acceleration},
          {"relative", relative}, {"block", "0"}};
}

inline Params pathParams(const std::string& points, const std::string& velocity,
                         const std::string& acceleration = "10", const std::string& closed = "0") {
  return {{"points", points},     {"radius", "[0]"},
          {"velocity", velocity}, {"acceleration", acceleration},
          {"interval", "0"},      {"closed", closed}};
}

// A controller on a manual clock, talked to in the client's own parameter texts.
class ControllerFixture : public ::testing::Test {
protected:
  Reply call(const std::string& name, const Params& params = {}) {
    return controller.Handle(name, params);
  }

  int state(const std::string& name, const Params& params = {}) {
    Reply reply = call(name, params);
    EXPECT_FALSE(reply.Pending()) << name;
    return std::stoi(reply.state);
  }

  // The numbers of a reply's result1, read the way the client reads them.
  std::vector<double> query(const std::string& name, const Params& params = {}) {
    Reply reply = call(name, params);
    EXPECT_EQ(reply.state, "0") << name;
    std::replace_if(
        reply.result1.begin(), reply.result1.end(),
        [](char c) { return c == '[' || c == ']' || c == ','; }, ' ');
    std::istringstream numbers(reply.result1);
    return {std::istream_iterator<double>(numbers), std::istream_iterator<double>()};
  }

  std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
  SimulatedController controller{{}, clock};
};

class ReadyController : public ControllerFixture {
protected:
  void SetUp() override {
    ASSERT_EQ(state("Robot", {{"name", "arm"},
                              {"parameters", R"({"channel_name": "can0","host_id": 1})"},
                              {"virtual", "1"}}),
              StateCodes::kOk);
  }
};

}  // namespace tavsim::test

#endif
