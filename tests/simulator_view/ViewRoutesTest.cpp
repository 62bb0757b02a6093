// The live view's routes as tools use them: the state follows the arm, the stream starts at
// once, and nothing but GET is served.
#include <gtest/gtest.h>
#include <httplib.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <vector>

#include "Robot.h"
#include "server/SimulatorServer.h"

namespace {

const Setup_Param kChannel{"can0", "can", "canopen", 1, 500000};

tavsim::ServerOptions WithView() {
  tavsim::ServerOptions options;
  options.view = 0;
  return options;
}

// The numbers of the list "key" in a JSON text.
std::vector<double> NumberList(const std::string& json, const std::string& key) {
  std::vector<double> values;
  const char* at = json.c_str() + json.find("\"" + key + "\":[") + key.size() + 4;
  for (char* end = nullptr; *at != ']'; at = end + (*end == ',' ? 1 : 0)) {
    values.push_back(std::strtod(at, &end));
  }
  return values;
}

class ViewRoutesTest : public ::testing::Test {
protected:
  tavsim::SimulatorServer server{WithView()};
  httplib::Client http{"127.0.0.1", *server.ViewPort()};
};

TEST_F(ViewRoutesTest, StateFollowsTheAnglesTheRobotReadsAndListsCommandsRefusalsAndFaults) {
  Robot robot;
  ASSERT_EQ(robot.RobotLogin("127.0.0.1", static_cast<short>(server.Port())), 0);
  ASSERT_EQ(robot.Setup("arm", kChannel, Setup_Mode::Virtual), 0);
  const int ids[] = {1, 2, 3, 4, 5, 6};
  const double targets[] = {10.0, -80.0, 70.0, -100.0, -80.0, 30.0};
  ASSERT_EQ(robot.move_to_angles(6, ids, targets, 90.0f, 180.0f, Relative_Mode::Absolute), 0);
  ASSERT_EQ(robot.wait_for_motors(), 0);
  EXPECT_NE(robot.move_to_angles(7, 0.0, 10.0f, 10.0f, Relative_Mode::Absolute), 0);
  server.Faults().Add(tavsim::Fault::DelayReply("get_angles", std::chrono::milliseconds(1)));
  std::vector<double> read(6);
  ASSERT_EQ(robot.get_angles(read), 0);

  const httplib::Result state = http.Get("/state");
  ASSERT_TRUE(state);
  EXPECT_EQ(state->status, 200);
  const std::vector<double> shown = NumberList(state->body, "angles");
  ASSERT_EQ(shown.size(), read.size());
  for (std::size_t i = 0; i < read.size(); ++i) {
    EXPECT_NEAR(shown[i], read[i], 1e-6) << "joint " << i + 1;
  }
  for (const char* kind : {"command", "refusal", "fault"}) {
    EXPECT_NE(state->body.find("\"kind\":\"" + std::string(kind) + "\""), std::string::npos)
        << kind;
  }
}

TEST_F(ViewRoutesTest, EventsStreamTheStateAndEveryOtherMethodIsRefused) {
  std::string stream;
  http.Get("/events", [&stream](const char* data, std::size_t size) {
    stream.append(data, size);
    return stream.find("\n\n") == std::string::npos;
  });
  EXPECT_EQ(stream.rfind("retry: 1000\ndata: {\"time\":", 0), 0u) << stream;

  for (const char* path : {"/", "/state", "/events", "/nowhere"}) {
    EXPECT_EQ(http.Post(path, "{}", "application/json")->status, 405) << path;
    EXPECT_EQ(http.Put(path, "{}", "application/json")->status, 405) << path;
    EXPECT_EQ(http.Delete(path)->status, 405) << path;
  }
  EXPECT_EQ(http.Get("/")->status, 200);
}

}  // namespace
