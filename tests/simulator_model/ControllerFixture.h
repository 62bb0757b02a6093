#ifndef TAVSIM_TESTS_CONTROLLERFIXTURE_H
#define TAVSIM_TESTS_CONTROLLERFIXTURE_H

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "model/Clock.h"
#include "model/SimulatedController.h"
#include "model/StateCodes.h"

namespace tavsim::test {

// A controller on a manual clock, talked to in the client's own parameter texts.
class ControllerFixture : public ::testing::Test {
protected:
  explicit ControllerFixture(ControllerOptions options = {})
      : clock(std::make_shared<ManualClock>()), controller(std::move(options), clock) {}

  Reply call(const std::string& name, const Params& params = {}) {
    return controller.handle(name, params);
  }

  int state(const std::string& name, const Params& params = {}) {
    Reply reply = call(name, params);
    EXPECT_FALSE(reply.pending()) << name;
    return std::stoi(reply.state);
  }

  // The numbers of a reply's result1, read the way the client reads them.
  std::vector<double> query(const std::string& name, const Params& params = {}) {
    Reply reply = call(name, params);
    EXPECT_EQ(reply.state, "0") << name;
    std::string cleaned;
    for (char c : reply.result1) {
      if (c != '[' && c != ']' && c != ' ') {
        cleaned += c;
      }
    }
    std::vector<double> values;
    std::size_t start = 0;
    while (start < cleaned.size()) {
      std::size_t comma = cleaned.find(',', start);
      values.push_back(std::stod(cleaned.substr(start, comma - start)));
      start = comma == std::string::npos ? cleaned.size() : comma + 1;
    }
    return values;
  }

  void setUpRobot() {
    ASSERT_EQ(state("Robot", {{"name", "arm"},
                              {"parameters", R"({"channel_name": "can0","channel_type": "can",)"
                                             R"("protocol": "canopen","host_id": 1,"baud_rate": 500000})"},
                              {"virtual", "1"}}),
              StateCodes::kOk);
  }

  static Params moveParams(const std::string& ids, const std::string& positions,
                           const std::string& velocity, const std::string& acceleration,
                           const std::string& relative = "0") {
    return {{"motor_ids", ids},  {"position", positions}, {"velocity", velocity},
            {"acceleration", acceleration}, {"relative", relative}, {"block", "0"}};
  }

  static std::string numberList(const std::vector<double>& values) {
    std::string text = "[";
    for (std::size_t i = 0; i < values.size(); ++i) {
      text += (i ? "," : "") + std::to_string(values[i]);
    }
    return text + "]";
  }

  std::shared_ptr<ManualClock> clock;
  SimulatedController controller;
};

}  // namespace tavsim::test

#endif
