#ifndef TAVTEST_SUPPORT_PROCESSPROBE_H
#define TAVTEST_SUPPORT_PROCESSPROBE_H

#include <cstddef>

namespace tavtest {

// CPU time used so far by all threads of this process, in seconds.
double ProcessCpuSeconds();

// Number of threads of this process (entries of /proc/self/task).
std::size_t ThreadCount();

// Number of file descriptors this process holds open (entries of /proc/self/fd, less the one
// that reads them).
std::size_t OpenDescriptorCount();

// Bytes the heap allocator has handed out and not yet taken back: malloc's arenas and mapped
// chunks, or the sanitizer's allocator in a sanitizer build (ThreadSanitizer's counts whole
// batches that its threads' caches take, so there it moves in coarse steps).
std::size_t HeapBytesInUse();

// Bytes of this process resident in memory (/proc/self/statm).
std::size_t ResidentBytes();

}  // namespace tavtest

#endif
