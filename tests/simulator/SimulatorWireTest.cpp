// The simulator seen from the wire: what it answers to the library's messages, in which
// order, and what it does with messages it cannot read.
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "WireClient.h"
#include "model/Clock.h"
#include "server/ServerCodes.h"
#include "server/SimulatorServer.h"
#include "support/Polling.h"

namespace {

using tavtest::Message;
using tavtest::WireClient;
using namespace std::chrono_literals;

const Message kSetup{
    {"name", "arm"},
    {"parameters",
     R"({"channel_name": "can0","channel_type": "can","protocol": "canopen","host_id": 1,"baud_rate": 500000})"},
    {"virtual", "1"}};

// move_to_angles of one motor as the library writes it.
Message Move(const std::string& motor, const std::string& position, const std::string& speed) {
  return {{"motor_ids", "[\"" + motor + "\"]"},
          {"position", "[" + position + "]"},
          {"velocity", speed},
          {"acceleration", speed},
          {"relative", "0"},
          {"block", "0"}};
}

class SimulatorWireTest : public ::testing::Test {
protected:
  tavsim::ServerOptions Options() {
    tavsim::ServerOptions options;
    options.clock = clock;
    return options;
  }

  // A client that has logged in, set the robot up and started a move.
  std::unique_ptr<WireClient> MovingClient(const std::string& motor, const std::string& position,
                                           const std::string& speed) {
    auto client = std::make_unique<WireClient>(server.Port());
    client->Login();
    EXPECT_EQ(client->Call("Robot", kSetup)["state"], "0");
    EXPECT_EQ(client->Call("move_to_angles", Move(motor, position, speed))["state"], "0");
    return client;
  }

  std::shared_ptr<tavsim::ManualClock> clock = std::make_shared<tavsim::ManualClock>();
  tavsim::SimulatorServer server{Options()};
};

TEST_F(SimulatorWireTest, EveryReplyIsOneTheLibraryAccepts) {
  WireClient client(server.Port());
  EXPECT_EQ(client.Login()["result"], "0");
  EXPECT_EQ(client.Call("get_motor_ids")["result1"], "[]") << "no robot before set-up";
  EXPECT_EQ(client.Call("Robot", kSetup)["state"], "0");

  // The reply forms RobotOnSimulatorTest does not reach through a Robot.
  EXPECT_EQ(client.Call("get_velocity", {{"motor_ids", R"(["2"])"}})["state"], "0");
  EXPECT_EQ(client.Call("finalize")["state"], "0");
  EXPECT_EQ(client.Call("get_input", {{"motor_ids", R"(["1","2"])"}})["state"], "2001051")
      << "finalized";
  EXPECT_EQ(client.Call("get_motor_ids")["result1"], "[]") << "the motors go with the robot";
  EXPECT_EQ(client.Call("no_such_command")["state"], "2001011");
  EXPECT_EQ(client.Call("Robot", {{"name", "arm"}})["state"], "2001021");
}

TEST_F(SimulatorWireTest, ClosingAClientDropsItsPendingWait) {
  auto first = MovingClient("2", "-60.000000", "10.000000");
  auto second = MovingClient("1", "90.000000", "1.000000");
  first->SendCommand("wait_for_motors", {{"motor_ids", R"(["2"])"}});
  second->SendCommand("wait_for_motors", {{"motor_ids", R"(["1"])"}});
  ASSERT_TRUE(tavtest::PollUntil(2000ms, [&] { return server.ConnectionCount() == 2; }));
  first.reset();
  ASSERT_TRUE(tavtest::PollUntil(2000ms, [&] { return server.ConnectionCount() == 1; }));
  EXPECT_GT(server.Controller().SecondsUntilNextCompletion().value_or(0.0), 60.0)
      << "only the 90 s wait is left";
  clock->Advance(10.0);  // the first client's motor arrives, the second's does not
  server.Wake();
  EXPECT_TRUE(second->HeartAnswered());
}

TEST_F(SimulatorWireTest, StopClosesEveryConnectionAndTheListener) {
  auto waiting = MovingClient("1", "90.000000", "1.000000");
  waiting->SendCommand("wait_for_motors", {{"motor_ids", R"(["1"])"}});
  WireClient idle(server.Port());
  ASSERT_TRUE(tavtest::PollUntil(2000ms, [&] { return server.ConnectionCount() == 2; }));
  server.Stop();
  EXPECT_EQ(server.ConnectionCount(), 0u);
  EXPECT_TRUE(waiting->ClosedByPeer());
  EXPECT_TRUE(idle.ClosedByPeer());
  EXPECT_FALSE(WireClient(server.Port()).Connected()) << "the listener is closed";
}

TEST_F(SimulatorWireTest, MessagesItCannotReadGetAnErrorOrAChecksumStateAndNoCrash) {
  WireClient client(server.Port());
  Message reply;
  // Not a message the client writes: an Error message the library reads.
  for (const std::string text :
       {"<root><x></root>", "<root></root>", "<root><heart>1</heart></root>",
        "<root><head><timestamp>1</timestamp></head></root>"}) {
    ASSERT_TRUE(client.SendRaw(text));
    ASSERT_TRUE(client.NextIs("Error", reply)) << text;
    EXPECT_EQ(reply["errorcode"], std::to_string(tavsim::ServerCodes::kUnreadableMessage)) << text;
  }
  // A name the reply could not echo without the library taking it for another message kind.
  client.SendCommand("HeartBeat");
  EXPECT_TRUE(client.NextIs("Error", reply));

  // Wrong checksums: answered in kind, and the command is not run.
  ASSERT_TRUE(client.SendRaw(
      "<root><head><identifier>ClientInfo</identifier></head><ClientInfo><version>0.1.0"
      "</version><system>windows</system><language>CPP</language></ClientInfo><tail>"
      "<checksum>1</checksum></tail></root>"));
  ASSERT_TRUE(client.NextIs("ConnResult", reply));
  EXPECT_EQ(reply["result"], std::to_string(tavsim::ServerCodes::kChecksumMismatch));
  ASSERT_TRUE(client.SendRaw(
      "<root><head><timestamp>9</timestamp><ClientID>x</ClientID></head><function>"
      "<parameter><name>arm</name><parameters>{}</parameters><virtual>1</virtual></parameter>"
      "<name>Robot</name></function><tail><checksum>0</checksum></tail></root>"));
  ASSERT_TRUE(client.NextIs("Robot9", reply));
  EXPECT_EQ(reply["state"], std::to_string(tavsim::ServerCodes::kChecksumMismatch));
  EXPECT_EQ(client.Call("get_motor_ids")["result1"], "[]") << "the set-up was not run";

  // Noise between messages is skipped; a message split across writes is still read.
  ASSERT_TRUE(client.SendRaw("noise<ro"));
  ASSERT_TRUE(client.SendRaw("ot><heart /></root>"));
  EXPECT_TRUE(client.NextIs("heart", reply));

  // A message that never ends: an Error, then the connection is closed.
  ASSERT_TRUE(client.SendRaw("<root>" + std::string(Options().maxMessageBytes + 1, 'x')));
  EXPECT_TRUE(client.NextIs("Error", reply));
  EXPECT_TRUE(client.ClosedByPeer());
  EXPECT_TRUE(WireClient(server.Port()).HeartAnswered()) << "the simulator still serves";
}

}  // namespace
