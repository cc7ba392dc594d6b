// GstMemory for tests of elements that must not touch a byte outside of a buffer.
#ifndef SUPPORT_GUARDED_MEMORY_H_
#define SUPPORT_GUARDED_MEMORY_H_

#include <gst/gst.h>

namespace nox::test {

// `size` bytes of 0 that end exactly at an unreadable page. A copy of the memory ends at one too.
GstMemory *new_guarded_memory(gsize size);

}  // namespace nox::test

#endif  // SUPPORT_GUARDED_MEMORY_H_
