// Fault rules as a client sees them on the wire, and their command-line form.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>

#include <chrono>
#include <string>

#include "WireClient.h"
#include "server/CommandLine.h"
#include "server/Fault.h"
#include "server/ServerCodes.h"
#include "server/SimulatorServer.h"

namespace {

using tavsim::Fault;
using tavtest::kDecodeFailed;
using tavtest::Message;
using tavtest::WireClient;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

class FaultInjectionTest : public ::testing::Test {
protected:
  void SetUp() override {
    Message reply;
    ASSERT_TRUE(client.SendClientInfo());
    ASSERT_TRUE(client.NextDecoded(reply));
  }

  // Sends get_motor_ids and returns the raw text of whatever comes next.
  std::string AskMotorIds() {
    client.SendCommand("get_motor_ids");
    std::string text;
    EXPECT_TRUE(client.Next(text));
    return text;
  }

  tavsim::SimulatorServer server;
  WireClient client{server.Port()};
};

TEST_F(FaultInjectionTest, DelayedReplyIsOvertakenByLaterOnes) {
  server.Faults().Add(Fault::DelayReply("get_motor_ids", 300ms));
  const auto start = Clock::now();
  const std::string stamp = client.SendCommand("get_motor_ids");
  ASSERT_TRUE(client.SendHeart());
  Message reply;
  ASSERT_TRUE(client.NextDecoded(reply));
  EXPECT_EQ(reply["identifier"], "heart");
  ASSERT_TRUE(client.ReplyTo("get_motor_ids", stamp, reply));
  EXPECT_GE(Clock::now() - start, 300ms);
}

TEST_F(FaultInjectionTest, ReplacedRepliesAreWhatTheRuleSays) {
  server.Faults().Add(Fault::ErrorInstead("get_motor_ids", "7"));
  server.Faults().Add(Fault::GarbageInstead("get_motor_ids"));
  server.Faults().Add(Fault::CorruptChecksum("heart"));  // a heart reply has no checksum
  server.Faults().Add(Fault::CorruptChecksum("get_motor_ids"));
  Message decoded;
  EXPECT_EQ(tavtest::Unwrap(AskMotorIds(), decoded), 0);
  EXPECT_EQ(decoded["identifier"], "Error");
  EXPECT_EQ(decoded["errorcode"], "7");
  EXPECT_EQ(AskMotorIds(), tavsim::kDefaultGarbage);
  EXPECT_EQ(tavtest::Unwrap(tavsim::kDefaultGarbage, decoded), kDecodeFailed);
  const std::string corrupted = AskMotorIds();
  EXPECT_NE(corrupted.find("<result1>[]</result1>"), std::string::npos) << corrupted;
  EXPECT_NE(corrupted.find("<checksum>185</checksum>"), std::string::npos) << "'[' + ']' is 184: " << corrupted;
  EXPECT_EQ(tavtest::Unwrap(corrupted, decoded), kDecodeFailed);
  EXPECT_EQ(tavtest::Unwrap(AskMotorIds(), decoded), 0) << "every rule is used up";
  EXPECT_EQ(server.Faults().Fired(), 3u);
  EXPECT_EQ(server.Faults().Armed(), 1u) << "the heart rule never applied";
}

TEST_F(FaultInjectionTest, RulesSkipAndCountTheRepliesTheyMatch) {
  server.Faults().Add(Fault::DropReply("heart").After(1).Times(2));
  Message reply;
  for (const bool answered : {true, false, false, true}) {
    ASSERT_TRUE(client.SendHeart());
    if (answered) {
      EXPECT_TRUE(client.NextDecoded(reply));
    } else {
      EXPECT_TRUE(client.Silent(100ms));
    }
  }
  server.Faults().Add(Fault::DropReply("").Always());
  client.SendCommand("get_motor_ids");
  EXPECT_TRUE(client.Silent(100ms)) << "an empty name matches every reply";
  server.Faults().Clear();
  EXPECT_EQ(tavtest::Unwrap(AskMotorIds(), reply), 0);
}

TEST_F(FaultInjectionTest, SplitReplyArrivesInPiecesThatTheLibraryJoins) {
  server.Faults().Add(Fault::SplitReply("get_motor_ids", 3, 150ms));
  const auto start = Clock::now();
  const std::string stamp = client.SendCommand("get_motor_ids");
  pollfd readable{client.NativeHandle(), POLLIN, 0};
  ASSERT_EQ(::poll(&readable, 1, 2000), 1);
  char first[512] = {};
  const ssize_t peeked = ::recv(client.NativeHandle(), first, sizeof first - 1, MSG_PEEK);
  ASSERT_GT(peeked, 0);
  EXPECT_EQ(std::string(first).find("</root>"), std::string::npos) << "only a first piece arrived: " << first;
  Message reply;
  ASSERT_TRUE(client.ReplyTo("get_motor_ids", stamp, reply));
  EXPECT_GE(Clock::now() - start, 300ms);
}

TEST_F(FaultInjectionTest, CloseEndsThatConnectionOnly) {
  server.Faults().Add(Fault::CloseConnection("get_motor_ids"));
  client.SendCommand("get_motor_ids");
  EXPECT_TRUE(client.ClosedByPeer());
  WireClient next(server.Port());
  ASSERT_TRUE(next.SendHeart());
  Message reply;
  EXPECT_TRUE(next.NextDecoded(reply));
}

TEST(FaultRuleTest, ReadsTheCommandLineFormAndRejectsBadOnes) {
  std::string problem;
  const std::optional<Fault> delay = tavsim::ParseFault("delay,on=get_angles,ms=250,times=all,after=2", problem);
  ASSERT_TRUE(delay) << problem;
  EXPECT_EQ(delay->kind, tavsim::FaultKind::Delay);
  EXPECT_EQ(delay->on, "get_angles");
  EXPECT_EQ(delay->pause, 250ms);
  EXPECT_EQ(delay->times, Fault::kEveryTime);
  EXPECT_EQ(delay->after, 2);
  const std::optional<Fault> error = tavsim::ParseFault("error", problem);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->text, std::to_string(tavsim::ServerCodes::kInjectedError));
  EXPECT_EQ(error->times, 1);
  const std::optional<Fault> split = tavsim::ParseFault("split,pieces=4", problem);
  ASSERT_TRUE(split);
  EXPECT_EQ(split->pieces, 4);
  EXPECT_EQ(split->pause, 20ms);
  for (const char* bad : {"explode", "drop,on", "split,pieces=1", "delay,ms=-5", "drop,colour=red", "drop,times=0"}) {
    problem.clear();
    EXPECT_FALSE(tavsim::ParseFault(bad, problem)) << bad;
    EXPECT_FALSE(problem.empty()) << bad;
  }
}

TEST(CommandLineTest, ReadsOptionsAndRejectsBadValues) {
  std::string problem;
  const auto line = tavsim::ParseCommandLine(
      {"--host", "0.0.0.0", "--port", "0", "--motors", "8", "--fault", "drop,on=heart", "--quiet"}, problem);
  ASSERT_TRUE(line) << problem;
  EXPECT_EQ(line->host, "0.0.0.0");
  EXPECT_EQ(line->port, 0);
  EXPECT_EQ(line->motors, 8u);
  ASSERT_EQ(line->faults.size(), 1u);
  EXPECT_EQ(line->faults[0].on, "heart");
  EXPECT_TRUE(line->quiet);
  const auto defaults = tavsim::ParseCommandLine({}, problem);
  ASSERT_TRUE(defaults);
  EXPECT_EQ(defaults->host, "127.0.0.1");
  EXPECT_EQ(defaults->port, tavsim::CommandLine::kDefaultPort);
  EXPECT_EQ(defaults->motors, 6u);
  for (const auto& bad : std::vector<std::vector<std::string>>{
           {"--motors", "11"}, {"--motors", "0"}, {"--port", "70000"}, {"--port"}, {"--verbose"}, {"--fault", "boom"}}) {
    problem.clear();
    EXPECT_FALSE(tavsim::ParseCommandLine(bad, problem)) << bad[0];
    EXPECT_FALSE(problem.empty());
  }
}

}  // namespace
