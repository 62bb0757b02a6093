#ifndef TAVTEST_SUPPORT_PROCESSPROBE_H
#define TAVTEST_SUPPORT_PROCESSPROBE_H

#include <cstddef>

namespace tavtest {

// CPU time used so far by all threads of this process, in seconds.
double ProcessCpuSeconds();

// Number of threads of this process (entries of /proc/self/task).
std::size_t ThreadCount();

}  // namespace tavtest

#endif
