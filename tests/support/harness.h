// GstHarness that tears itself down.
#ifndef SUPPORT_HARNESS_H_
#define SUPPORT_HARNESS_H_

#include <gst/check/gstharness.h>

#include <memory>

namespace nox::test {

struct HarnessDeleter {
  void operator()(GstHarness *harness) const { gst_harness_teardown(harness); }
};
using Harness = std::unique_ptr<GstHarness, HarnessDeleter>;

inline Harness new_harness(const char *element) {
  return Harness(gst_harness_new(element));
}

struct ObjectDeleter {
  void operator()(gpointer object) const { gst_object_unref(object); }
};
template <typename Object>
using ObjectPtr = std::unique_ptr<Object, ObjectDeleter>;

struct BufferDeleter {
  void operator()(GstBuffer *buffer) const { gst_buffer_unref(buffer); }
};
using BufferPtr = std::unique_ptr<GstBuffer, BufferDeleter>;

struct CapsDeleter {
  void operator()(GstCaps *caps) const { gst_caps_unref(caps); }
};
using CapsPtr = std::unique_ptr<GstCaps, CapsDeleter>;

}  // namespace nox::test

#endif  // SUPPORT_HARNESS_H_
