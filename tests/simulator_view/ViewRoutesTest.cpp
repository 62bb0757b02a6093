// The live view's routes as tools use them: the state lists what the arm was told, the stream
// starts at once, and nothing but GET is served.
#include <gtest/gtest.h>
#include <httplib.h>

#include <chrono>
#include <string>

#include "Robot.h"
#include "server/SimulatorServer.h"
#include "support/ReplyTimeout.h"

namespace {

const Setup_Param kChannel{"can0", "can", "canopen", 1, 500000};

tavsim::ServerOptions WithView() {
  tavsim::ServerOptions options;
  options.view = 0;
  return options;
}

class ViewRoutesTest : public ::testing::Test {
protected:
  tavsim::SimulatorServer server{WithView()};
  httplib::Client http{"127.0.0.1", *server.ViewPort()};
};

TEST_F(ViewRoutesTest, StateListsCommandsRefusalsAndFaults) {
  Robot robot;
  ASSERT_EQ(robot.SetReplyTimeout(tavtest::kReplyTimeoutSeconds), 0);
  ASSERT_EQ(robot.RobotLogin("127.0.0.1", static_cast<short>(server.Port())), 0);
  ASSERT_EQ(robot.Setup("arm", kChannel, Setup_Mode::Virtual), 0);
  ASSERT_EQ(robot.move_to_angles(1, 10.0, 90.0f, 180.0f, Relative_Mode::Absolute), 0);
  EXPECT_NE(robot.move_to_angles(7, 0.0, 10.0f, 10.0f, Relative_Mode::Absolute), 0);
  server.Faults().Add(tavsim::Fault::DelayReply("get_angles", std::chrono::milliseconds(1)));
  double angle = 0.0;
  ASSERT_EQ(robot.get_angles(1, angle), 0);

  const httplib::Result state = http.Get("/state");
  ASSERT_TRUE(state);
  EXPECT_EQ(state->status, 200);
  for (const char* kind : {"command", "refusal", "fault"}) {
    EXPECT_NE(state->body.find("\"kind\":\"" + std::string(kind) + "\""), std::string::npos)
        << kind;
  }
}

TEST_F(ViewRoutesTest, EventsStreamTheStateAtOnce) {
  std::string stream;
  http.Get("/events", [&stream](const char* data, std::size_t size) {
    stream.append(data, size);
    return stream.find("\n\n") == std::string::npos;
  });
  EXPECT_EQ(stream.rfind("retry: 1000\ndata: {\"time\":", 0), 0u) << stream;
}

TEST_F(ViewRoutesTest, EveryMethodButGetIsRefused) {
  for (const char* path : {"/", "/state", "/events", "/nowhere"}) {
    EXPECT_EQ(http.Post(path, "{}", "application/json")->status, 405) << path;
    EXPECT_EQ(http.Put(path, "{}", "application/json")->status, 405) << path;
    EXPECT_EQ(http.Delete(path)->status, 405) << path;
  }
  EXPECT_EQ(http.Get("/")->status, 200);
}

}  // namespace
