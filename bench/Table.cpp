#include "Table.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <iterator>

namespace bench {

namespace {

// The three load averages, as the kernel reports them.
std::string LoadAverage() {
  std::ifstream file("/proc/loadavg");
  double one = 0;
  double five = 0;
  double fifteen = 0;
  file >> one >> five >> fifteen;
  char text[64];
  std::snprintf(text, sizeof text, "%.2f %.2f %.2f", one, five, fifteen);
  return text;
}

std::string Key(const std::string& name, int threads) {
  return name + "/" + std::to_string(threads);
}

double Counter(const benchmark::BenchmarkReporter::Run& run, const char* name) {
  const auto counter = run.counters.find(name);
  return counter == run.counters.end() ? 0.0 : static_cast<double>(counter->second);
}

// `decimals` digits after the point; a sign in front when `signed` asks for one.
std::string Fixed(double value, int decimals, bool withSign = false) {
  char text[64];
  std::snprintf(text, sizeof text, withSign ? "%+.*f" : "%.*f", decimals, value);
  return text;
}

// Thousands separated by commas: 12,345.
std::string Count(double value) {
  std::string digits = Fixed(value, 0);
  for (auto at = static_cast<std::ptrdiff_t>(digits.size()) - 3; at > 0; at -= 3) {
    digits.insert(static_cast<std::size_t>(at), ",");
  }
  return digits;
}

std::string Verdict(bool met) { return met ? "met" : "**missed**"; }

void Row(const std::string& what, const std::string& result, const std::string& ratio,
         const std::string& target) {
  std::printf("| %s | %s | %s | %s |\n", what.c_str(), result.c_str(), ratio.c_str(),
              target.c_str());
}

}  // namespace

bool Table::ReportContext(const Context& context) {
  loadAtStart = LoadAverage();
  cores = context.cpu_info.num_cpus;
  return true;
}

// With repetitions only the aggregates arrive, of which the median is kept; a run that failed
// arrives on its own and is kept to show why.
void Table::ReportRuns(const std::vector<Run>& reports) {
  for (const Run& run : reports) {
    if (run.run_type == Run::RT_Aggregate && run.aggregate_name != "median") {
      continue;
    }
    runs[Key(run.run_name.function_name, static_cast<int>(run.threads))] = run;
    std::fprintf(stderr, "%s %s\n",
                 run.error_occurred ? "failed:" : "done:", run.benchmark_name().c_str());
  }
}

const benchmark::BenchmarkReporter::Run* Table::Find(const std::string& name, int threads) const {
  const auto run = runs.find(Key(name, threads));
  return run == runs.end() ? nullptr : &run->second;
}

void Table::Finalize() {
  const std::time_t now = std::time(nullptr);
  char date[32];
  std::strftime(date, sizeof date, "%Y-%m-%d %H:%M", std::localtime(&now));
  std::printf(
      "\ntavclient benchmark, %s, %d cores, load average %s at the start and %s at the end\n\n",
      date, cores, loadAtStart.c_str(), LoadAverage().c_str());
  Row("measurement", "result", "× floor (median, p99)", "target");
  Row("---", "---", "---", "---");
  PrintLatencies();
  PrintThroughput();
  PrintCosts();
}

void Table::WithRun(const std::string& name, int threads, const std::string& what,
                    const Print& print) const {
  const Run* run = Find(name, threads);
  if (run == nullptr) {
    Row(what, "did not run", "", "");
  } else if (run->error_occurred) {
    Row(what, "failed: " + run->error_message, "", "");
  } else {
    print(what, *run);
  }
}

void Table::PrintLatencies() const {
  const auto latency = [](const Run& run) {
    return "median " + Fixed(Counter(run, "median_us"), 1) + " µs, p99 " +
           Fixed(Counter(run, "p99_us"), 1) + " µs";
  };
  double floorMedian = 0;
  double floorTail = 0;
  WithRun("floor", 1, "floor: raw TCP ping-pong", [&](const std::string& what, const Run& floor) {
    floorMedian = Counter(floor, "median_us");
    floorTail = Counter(floor, "p99_us");
    Row(what + ", " + Count(Counter(floor, "request_bytes")) + " B request, " +
            Count(Counter(floor, "reply_bytes")) + " B reply",
        latency(floor), "1, 1", "");
  });
  const auto ratios = [&](const Run& run) {
    return Fixed(Counter(run, "median_us") / floorMedian, 2) + ", " +
           Fixed(Counter(run, "p99_us") / floorTail, 2);
  };
  WithRun(
      "hand-off", 1, "two thread hand-offs (condition variable ping-pong), no socket",
      [&](const std::string& what, const Run& run) { Row(what, latency(run), ratios(run), ""); });
  const std::pair<const char*, const char*> commands[] = {
      {"get_angles 1", "get_angles, 1 motor"},
      {"get_angles 6", "get_angles, 6 motors"},
      {"move_to_angles", "move_to_angles, 1 motor"}};
  for (const auto& [name, title] : commands) {
    WithRun(name, 1, title, [&](const std::string& what, const Run& run) {
      const bool met = Counter(run, "median_us") <= 1.5 * floorMedian &&
                       Counter(run, "p99_us") <= 2.0 * floorTail;
      Row(what, latency(run), ratios(run), "median ≤ 1.5 ×, p99 ≤ 2 × floor's: " + Verdict(met));
    });
  }
  const auto loop = [&](const std::string& what, const Run& run) {
    const double slots = Counter(run, "slots");
    const double missed = Counter(run, "missed_slots");
    const double waking = Counter(run, "missed_waking");
    Row(what + ", " + Fixed(Counter(run, "seconds"), 0) + " s",
        "p50 " + Fixed(Counter(run, "median_us"), 1) + " µs, p99 " +
            Fixed(Counter(run, "p99_us"), 1) + " µs, p99.9 " + Fixed(Counter(run, "p999_us"), 1) +
            " µs, max " + Fixed(Counter(run, "max_us"), 1) + " µs; " + Count(missed) + " of " +
            Count(slots) + " slots missed: " + Count(waking) + " before the loop woke, " +
            Count(missed - waking) + " during calls",
        ratios(run),
        "≤ 0.1% missed: " + Verdict(missed <= 0.001 * slots) +
            "; during calls: " + Verdict(missed - waking <= 0.001 * slots));
  };
  WithRun("control loop", 1, "1 kHz control loop: get_angles, 1 motor, one call per 1 ms slot",
          loop);
  WithRun("control loop real-time", 1, "the same loop, the program at a real-time priority", loop);
  WithRun("control loop idle", 1, "the same loop without the call: what the machine takes",
          [&](const std::string& what, const Run& run) {
            Row(what + ", " + Fixed(Counter(run, "seconds"), 0) + " s",
                Count(Counter(run, "missed_slots")) + " of " + Count(Counter(run, "slots")) +
                    " slots missed",
                "", "");
          });
}

void Table::PrintThroughput() const {
  const auto rate = [](const Run& run) { return Counter(run, "items_per_second"); };
  const auto cpu = [](const Run& run) {
    return ", " + Fixed(Counter(run, "cpu_us_per_call"), 1) + " µs CPU per call";
  };
  double single = 0;
  WithRun("one Robot", 1, "get_angles from 1 caller thread, one Robot",
          [&](const std::string& what, const Run& run) {
            single = rate(run);
            Row(what, Count(single) + " calls/s" + cpu(run), "", "");
          });
  const struct {
    const char* name;
    int threads;
    const char* what;
    bool targeted;
  } rows[] = {{"one Robot", 2, "get_angles from 2 caller threads, one Robot", false},
              {"one Robot", 4, "get_angles from 4 caller threads, one Robot", true},
              {"4 Robots, one simulator", 4,
               "get_angles from 4 Robots on one simulator, a thread each", false},
              {"4 Robots, 4 simulators", 4,
               "get_angles from 4 Robots on a simulator each, a thread each", false}};
  for (const auto& row : rows) {
    WithRun(row.name, row.threads, row.what, [&](const std::string& what, const Run& run) {
      if (single <= 0) {
        Row(what, Count(rate(run)) + " calls/s" + cpu(run), "",
            row.targeted ? "≥ 2 × 1 thread: no 1-thread figure" : "");
        return;
      }
      const double speedUp = rate(run) / single;
      Row(what, Count(rate(run)) + " calls/s (" + Fixed(speedUp, 2) + " × 1 thread)" + cpu(run), "",
          row.targeted ? "≥ 2 × 1 thread: " + Verdict(speedUp >= 2.0) : "");
    });
  }
  WithRun("one Robot", 1, "tight loop: get_angles calls per second, 1 caller",
          [&](const std::string& what, const Run&) {
            Row(what, Count(single) + " calls/s", "", "≥ 5,000/s: " + Verdict(single >= 5000.0));
          });
  WithRun("python get_angles", 1, "the same loop in Python (tavclient module), 1 caller",
          [&](const std::string& what, const Run& run) {
            const double python = Counter(run, "calls_per_second");
            const std::string ratio =
                single > 0 ? " (" + Fixed(python / single, 2) + " × the C++ loop)" : "";
            Row(what, Count(python) + " calls/s" + ratio, "", "");
          });
}

void Table::PrintCosts() const {
  const std::pair<const char*, const char*> cpu[] = {
      {"idle", "CPU of a logged-in idle Robot (10 s, one heartbeat)"},
      {"waiting", "CPU while one call waits 2 s for a delayed reply"}};
  for (const auto& [name, title] : cpu) {
    WithRun(name, 1, title, [](const std::string& what, const Run& run) {
      const double percent = Counter(run, "core_share") * 100.0;
      Row(what, Fixed(percent, 3) + " % of a core (whole process)", "",
          "< 1 %: " + Verdict(percent < 1.0));
    });
  }
  WithRun("memory", 1, "memory growth over get_angles calls",
          [](const std::string& what, const Run& run) {
            const double calls = Counter(run, "calls");
            const double heap = Counter(run, "heap_growth_bytes");
            Row(what + ", " + Count(calls) + " of them",
                "heap " + Fixed(heap, 0, true) + " B, RSS " +
                    Fixed(Counter(run, "rss_growth_bytes") / 1024.0, 0, true) + " KiB",
                "", "none (heap under 1 B per call): " + Verdict(heap < calls));
          });
  const std::pair<const char*, const char*> parser[] = {
      {"wrap_msg", "Parser::wrap_msg, get_angles command (with its map)"},
      {"unwrap", "Parser::unwrap, get_angles reply"}};
  for (const auto& [name, title] : parser) {
    WithRun(name, 1, title, [](const std::string& what, const Run& run) {
      const double seconds =
          run.GetAdjustedRealTime() / benchmark::GetTimeUnitMultiplier(run.time_unit);
      Row(what, Fixed(seconds * 1e6, 2) + " µs per message", "", "");
    });
  }
  WithRun("follow trajectory", 1,
          "following a 6-joint path of 5 s through 50 points, monitor at 100 Hz (worst of ",
          [](const std::string& what, const Run& run) {
            const std::string repeats = Fixed(Counter(run, "runs"), 0) + " runs)";
            const double error = Counter(run, "max_error_deg");
            const double late = Counter(run, "late_s");
            const double planned = Counter(run, "planned_s");
            const double final = Counter(run, "final_error_deg");
            Row(what + repeats + ": largest tracking error", Fixed(error, 3) + " deg", "",
                "≤ 0.5 deg: " + Verdict(error <= 0.5));
            Row("the same: duration against the plan",
                Fixed(Counter(run, "duration_s"), 3) + " s for " + Fixed(planned, 1) + " s", "",
                "within 2 % + 50 ms: " + Verdict(std::abs(late) <= 0.02 * planned + 0.05));
            Row("the same: largest final error", Fixed(final, 4) + " deg", "",
                "≤ 0.05 deg: " + Verdict(final <= 0.05));
          });
  WithRun("recording", 1, "CSV recording at 100 Hz: angles, velocities, currents of 6 motors",
          [](const std::string& what, const Run& run) {
            Row(what + " (" + Fixed(Counter(run, "seconds"), 0) + " s, " +
                    Count(Counter(run, "rows")) + " rows, " + Count(Counter(run, "missed_cycles")) +
                    " cycles missed)",
                Fixed(Counter(run, "bytes") / Counter(run, "rows"), 0) + " B per row, " +
                    Fixed(Counter(run, "bytes_per_hour") / 1e6, 1) + " MB per hour",
                "", "");
          });
  WithRun("log", 1, "log written per get_angles round trip",
          [](const std::string& what, const Run& run) {
            Row(what,
                Fixed(Counter(run, "log_bytes"), 1) + " B in " +
                    Fixed(Counter(run, "log_lines"), 2) + " lines",
                "", "");
          });
}

}  // namespace bench
