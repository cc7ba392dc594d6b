// The most memory that this process has held at once.
#ifndef SUPPORT_PEAK_MEMORY_H_
#define SUPPORT_PEAK_MEMORY_H_

#include <cstddef>
#include <fstream>
#include <string>

namespace nox::test {

// Resident memory from now on counts anew.
inline void forget_peak_memory() {
  std::ofstream("/proc/self/clear_refs") << "5";
}

// In bytes, since the process began or the last peak was forgotten; 0 where the system does not
// tell.
inline std::size_t peak_memory() {
  std::ifstream status("/proc/self/status");
  std::string word;
  std::size_t kilobytes = 0;
  while (status >> word) {
    if (word == "VmHWM:" && status >> kilobytes) break;
  }
  return kilobytes * 1024;
}

}  // namespace nox::test

#endif  // SUPPORT_PEAK_MEMORY_H_
