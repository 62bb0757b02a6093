// Runs every benchmark and prints one table. The library writes its log under HOME, so HOME is
// a fresh directory for this run, removed at the end.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "Table.h"

int main(int argc, char** argv) {
  std::string home = (std::filesystem::temp_directory_path() / "tavclient-bench-XXXXXX").string();
  if (::mkdtemp(home.data()) == nullptr || ::setenv("HOME", home.c_str(), 1) != 0) {
    return 1;
  }
  benchmark::Initialize(&argc, argv);
  bench::Table table;
  benchmark::RunSpecifiedBenchmarks(&table);
  benchmark::Shutdown();
  std::filesystem::remove_all(home);
  return 0;
}
