#ifndef TAVBENCH_TABLE_H
#define TAVBENCH_TABLE_H

#include <benchmark/benchmark.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace bench {

// Keeps the figure of every benchmark (the median of its repetitions) and prints them at the
// end as one Markdown table, with the ratios to the floor of the same run and the project's
// targets, met or missed. Progress goes to standard error meanwhile.
class Table : public benchmark::BenchmarkReporter {
public:
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& reports) override;
  void Finalize() override;

private:
  using Print = std::function<void(const std::string& what, const Run& run)>;

  // The run of `name` with `threads` callers; null when it did not report.
  const Run* Find(const std::string& name, int threads = 1) const;
  // Prints the row `what` of that run through `print`, or a row that says why there is none.
  void WithRun(const std::string& name, int threads, const std::string& what,
               const Print& print) const;
  void PrintLatencies() const;
  void PrintThroughput() const;
  void PrintCosts() const;

  std::map<std::string, Run> runs;
  std::string loadAtStart;
  int cores = 0;
};

}  // namespace bench

#endif
