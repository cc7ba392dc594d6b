#include "video/aligned_alloc.h"

#include <algorithm>
#include <cstdlib>
#ifdef _WIN32
#include <malloc.h>
#endif

void *nox_aligned_alloc(std::size_t alignment, std::size_t size) {
  size = std::max<std::size_t>(size, 1);
#ifdef _WIN32
  return _aligned_malloc(size, alignment);
#else
  // Not std::aligned_alloc: it wants the size rounded up, which would hide an overrun from the
  // sanitizers.
  void *block = nullptr;
  return posix_memalign(&block, alignment, size) == 0 ? block : nullptr;
#endif
}

void nox_aligned_free(void *block) {
#ifdef _WIN32
  _aligned_free(block);
#else
  std::free(block);
#endif
}
