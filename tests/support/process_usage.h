// What this process holds of the system, as Linux tells it.
#ifndef SUPPORT_PROCESS_USAGE_H_
#define SUPPORT_PROCESS_USAGE_H_

#include <malloc.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace nox::test {

struct ProcessUsage {
  long resident_kib = 0;
  long heap_kib = 0;  // handed out by malloc and not given back; 0 under another allocator
  long descriptors = 0;
  long threads = 0;
};

inline long count_entries(const char *folder) {
  const std::filesystem::directory_iterator entries(folder);
  return static_cast<long>(std::distance(begin(entries), end(entries)));
}

// Memory that is free but kept by the allocator is given back first.
inline ProcessUsage process_usage() {
  malloc_trim(0);
  ProcessUsage usage;
  long total_pages = 0, resident_pages = 0;
  std::ifstream("/proc/self/statm") >> total_pages >> resident_pages;
  usage.resident_kib = resident_pages * (sysconf(_SC_PAGESIZE) / 1024);
  const struct mallinfo2 heap = mallinfo2();
  usage.heap_kib = static_cast<long>((heap.uordblks + heap.hblkhd) / 1024);
  usage.descriptors = count_entries("/proc/self/fd");
  usage.threads = count_entries("/proc/self/task");
  return usage;
}

}  // namespace nox::test

#endif  // SUPPORT_PROCESS_USAGE_H_
