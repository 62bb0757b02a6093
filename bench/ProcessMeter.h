#ifndef TAVBENCH_PROCESSMETER_H
#define TAVBENCH_PROCESSMETER_H

#include <cstddef>

// What the whole process uses: every thread of the library, of the simulators in it and of
// the benchmark itself, so each figure is an upper bound for the library's share.
namespace bench::ProcessMeter {

// User plus system CPU time of all threads so far.
double CpuSeconds();
// Bytes handed out by malloc and not yet freed, in every arena.
std::size_t HeapInUse();
// Resident set size.
std::size_t ResidentBytes();

}  // namespace bench::ProcessMeter

#endif
