// The floor: raw TCP ping-pong on loopback with the sizes of a real get_angles exchange.
#include <benchmark/benchmark.h>

#include "Latency.h"
#include "PingPong.h"
#include "Registration.h"
#include "WireTap.h"

namespace bench {

namespace {

void Floor(benchmark::State& state) {
  const WireExchange& exchange = GetAnglesExchange();
  PingPong pingPong(exchange.request.size(), exchange.reply.size());
  Latency latency(state);
  for (auto _ : state) {
    latency.Time([&] { return pingPong.RoundTrip(); });
  }
  latency.Report();
  state.counters["request_bytes"] = static_cast<double>(exchange.request.size());
  state.counters["reply_bytes"] = static_cast<double>(exchange.reply.size());
}

BENCHMARK(Floor)->Name("floor")->UseRealTime()->Apply([](Benchmark* b) { Repeated(b, 1.0); });

}  // namespace

}  // namespace bench
