// What one message costs: the parser's text work per message, and the log written per call.
#include <benchmark/benchmark.h>

#include <map>
#include <string>

#include "LogWatch.h"
#include "Registration.h"
#include "WireTap.h"
#include "protocol/Parser.h"

namespace bench {

namespace {

constexpr int kLoggedCalls = 10000;

// The map a Robot hands to wrap_msg for get_angles of motor 1; wrap_msg consumes part of it,
// so every message gets a fresh copy, as every call does.
void WrapCommand(benchmark::State& state) {
  const std::map<std::string, std::string> params{{"timestamp", "1234"},
                                                  {"ClientID", "192.168.1.100"},
                                                  {"function_name", "get_angles"},
                                                  {"motor_ids", "[\"1\"]"}};
  Parser parser;
  std::string text;
  for (auto _ : state) {
    std::map<std::string, std::string> message = params;
    parser.wrap_msg(text, message);
    benchmark::DoNotOptimize(text.data());
  }
}

void UnwrapReply(benchmark::State& state) {
  std::string text = GetAnglesExchange().reply;
  Parser parser;
  for (auto _ : state) {
    std::map<std::string, std::string> result;
    if (parser.unwrap(result, text) != 0) {
      state.SkipWithError("the reply did not decode");
    }
    benchmark::DoNotOptimize(result.size());
  }
}

void LogPerCall(benchmark::State& state) {
  const LogWatch::Extent before = LogWatch::Settled();
  double angle = 0;
  for (auto _ : state) {
    if (Pool::RobotAt(0).get_angles(1, angle) != 0) {
      state.SkipWithError("get_angles failed");
    }
  }
  const LogWatch::Extent after = LogWatch::Settled();
  const auto calls = static_cast<double>(state.iterations());
  state.counters["log_bytes"] = static_cast<double>(after.bytes - before.bytes) / calls;
  state.counters["log_lines"] = static_cast<double>(after.lines - before.lines) / calls;
}

BENCHMARK(WrapCommand)->Name("wrap_msg")->Apply([](Benchmark* b) { Repeated(b, 0.5); });
BENCHMARK(UnwrapReply)->Name("unwrap")->Apply([](Benchmark* b) { Repeated(b, 0.5); });
BENCHMARK(LogPerCall)->Name("log")->Apply(OnPool<1, 1>)->Iterations(kLoggedCalls);

}  // namespace

}  // namespace bench
