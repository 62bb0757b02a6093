// Fault rules as a client sees them on the wire, and their command-line form.
#include <gtest/gtest.h>

#include <chrono>
#include <string>

#include "WireClient.h"
#include "server/CommandLine.h"
#include "server/Fault.h"
#include "server/ServerCodes.h"
#include "server/SimulatorServer.h"

namespace {

using tavsim::Fault;
using tavtest::Message;
using tavtest::WireClient;
using namespace std::chrono_literals;

class FaultInjectionTest : public ::testing::Test {
protected:
  void SetUp() override { client.Login(); }

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

TEST_F(FaultInjectionTest, ReplacedRepliesAreWhatTheRuleSays) {
  server.Faults().Add(Fault::GarbageInstead("get_motor_ids"));
  server.Faults().Add(Fault::CorruptChecksum("heart"));  // a heart reply has no checksum
  server.Faults().Add(Fault::CorruptChecksum("get_motor_ids"));
  Message decoded;
  EXPECT_EQ(AskMotorIds(), tavsim::kDefaultGarbage);
  const std::string corrupted = AskMotorIds();
  EXPECT_NE(corrupted.find("<result1>[]</result1>"), std::string::npos) << corrupted;
  EXPECT_NE(corrupted.find("<checksum>185</checksum>"), std::string::npos)
      << "'[' + ']' is 184: " << corrupted;
  EXPECT_EQ(tavtest::Unwrap(AskMotorIds(), decoded), 0) << "every rule is used up";
  EXPECT_EQ(server.Faults().Fired(), 2u);
  EXPECT_EQ(server.Faults().Armed(), 1u) << "the heart rule never applied";
}

TEST_F(FaultInjectionTest, RulesSkipAndCountTheRepliesTheyMatch) {
  server.Faults().Add(Fault::DropReply("heart").After(1).Times(2));
  for (const bool answered : {true, false, false, true}) {
    if (answered) {
      EXPECT_TRUE(client.HeartAnswered());
    } else {
      ASSERT_TRUE(client.SendHeart());
      EXPECT_TRUE(client.Silent(100ms));
    }
  }
  server.Faults().Add(Fault::DropReply("").Always());
  client.SendCommand("get_motor_ids");
  EXPECT_TRUE(client.Silent(100ms)) << "an empty name matches every reply";
  server.Faults().Clear();
  Message reply;
  EXPECT_EQ(tavtest::Unwrap(AskMotorIds(), reply), 0);
}

TEST(FaultRuleTest, ReadsTheCommandLineFormAndRejectsBadOnes) {
  const std::vector<std::pair<std::string, std::string>> good{
      {"delay,on=get_angles,ms=250,times=all,after=2",
       "delay 250 ms on get_angles after 2, every time"},
      {"error",
       "error '" + std::to_string(tavsim::ServerCodes::kInjectedError) + "' on any reply, 1 time"},
      {"split,pieces=4", "split 20 ms in 4 pieces on any reply, 1 time"},
      {"garbage,text=zz,times=3,on=heart", "garbage 'zz' on heart, 3 times"},
  };
  std::string problem;
  for (const auto& [rule, described] : good) {
    const std::optional<Fault> fault = tavsim::ParseFault(rule, problem);
    ASSERT_TRUE(fault) << rule << ": " << problem;
    EXPECT_EQ(tavsim::Describe(*fault), described);
  }
  for (const char* bad :
       {"explode", "drop,on", "split,pieces=1", "delay,ms=-5", "drop,colour=red", "drop,times=0"}) {
    problem.clear();
    EXPECT_FALSE(tavsim::ParseFault(bad, problem)) << bad;
    EXPECT_FALSE(problem.empty()) << bad;
  }
}

TEST(CommandLineTest, ReadsOptionsAndRejectsBadValues) {
  std::string problem;
  const auto line =
      tavsim::ParseCommandLine({"--host", "0.0.0.0", "--port", "0", "--motors", "8", "--fault",
                                "drop,on=heart", "--quiet", "--floor", "-0.5", "--fold-limit", "5"},
                               problem);
  ASSERT_TRUE(line) << problem;
  EXPECT_EQ(line->host, "0.0.0.0");
  ASSERT_EQ(line->faults.size(), 1u);
  EXPECT_EQ(line->faults[0].on, "heart");
  EXPECT_TRUE(line->quiet);
  EXPECT_TRUE(line->limits.floor == -0.5 && line->limits.foldLimit == 5.0);
  EXPECT_FALSE(tavsim::ParseCommandLine({"--no-floor"}, problem)->limits.floor.has_value());
  const auto defaults = tavsim::ParseCommandLine({}, problem);
  ASSERT_TRUE(defaults);
  EXPECT_EQ(defaults->host, "127.0.0.1");
  EXPECT_EQ(defaults->port, tavsim::CommandLine::kDefaultPort);
  EXPECT_EQ(defaults->motors, 6u);
  for (const auto& bad : std::vector<std::vector<std::string>>{{"--motors", "0"},
                                                               {"--port", "70000"},
                                                               {"--port"},
                                                               {"--verbose"},
                                                               {"--fault", "boom"},
                                                               {"--floor", "low"},
                                                               {"--fold-limit", "181"}}) {
    problem.clear();
    EXPECT_FALSE(tavsim::ParseCommandLine(bad, problem)) << bad[0];
    EXPECT_FALSE(problem.empty());
  }
}

}  // namespace
