#ifndef TAVTEST_SUPPORT_PROCESSPROBE_H
#define TAVTEST_SUPPORT_PROCESSPROBE_H

#include <time.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// The sanitizer runtimes' public allocator interface; g++ ships no header for it.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#else
#include <malloc.h>
#endif

namespace tavtest {

// CPU time used so far by all threads of this process, in seconds.
inline double ProcessCpuSeconds() {
  timespec used{};
  ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
  return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) / 1e9;
}

inline std::size_t EntriesOf(const char* directory) {
  const std::filesystem::directory_iterator entries(directory);
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

// Number of threads of this process.
inline std::size_t ThreadCount() { return EntriesOf("/proc/self/task"); }

// Number of file descriptors this process holds open, less the one that reads them.
inline std::size_t OpenDescriptorCount() { return EntriesOf("/proc/self/fd") - 1; }

// Bytes the heap allocator has handed out and not yet taken back: malloc's arenas and mapped
// chunks, or the sanitizer's allocator in a sanitizer build (ThreadSanitizer's counts whole
// batches that its threads' caches take, so there it moves in coarse steps).
inline std::size_t HeapBytesInUse() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return __sanitizer_get_current_allocated_bytes();
#else
  const struct mallinfo2 heap = ::mallinfo2();
  return heap.uordblks + heap.hblkhd;
#endif
}

// Bytes of this process resident in memory.
inline std::size_t ResidentBytes() {
  std::size_t pages = 0;
  std::size_t resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return resident * static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

// What a process that leaks nothing comes back to, measured when made.
struct Footprint {
  std::size_t descriptors = OpenDescriptorCount();
  std::size_t threads = ThreadCount();
  std::size_t heapBytes = HeapBytesInUse();
  std::size_t residentBytes = ResidentBytes();

  // The descriptors of `before`, no more threads and its heap give or take caches of
  // `heapSlack`. Fewer threads is fine: a thread joined just before `before` was taken may
  // still have been listed, as the kernel wakes the joiner before it reaps the thread.
  bool Within(const Footprint& before, std::size_t heapSlack) const {
    return descriptors == before.descriptors && threads <= before.threads &&
           heapBytes <= before.heapBytes + heapSlack;
  }
};

}  // namespace tavtest

#endif
