// What tests that take every element in turn share.
#ifndef NOXVISUALS_EVERY_ELEMENT_H_
#define NOXVISUALS_EVERY_ELEMENT_H_

#include <gst/gst.h>
#include <gtest/gtest.h>

#include <string>

#include "noxvisuals/pen_buffer.h"
#include "support/harness.h"
#include "support/video_buffer.h"

namespace nox::test {

inline constexpr const char *kElementNames[] = {"noxpentracker", "noxvectorizer", "noxqrdec"};

// A new element, owned by the caller.
inline ObjectPtr<GstElement> new_element(const char *name) {
  GstElement *element = gst_element_factory_make(name, nullptr);
  if (element != nullptr) gst_object_ref_sink(element);
  return ObjectPtr<GstElement>(element);
}

// A small picture that gives every element something to do: a pen, and edges around it.
inline GstVideoInfo small_info() {
  return video_info(GST_VIDEO_FORMAT_I420, 64, 36);
}
inline GstBuffer *new_small_frame() {
  const GstVideoInfo info = small_info();
  GstBuffer *buffer = new_video_buffer(info);
  draw_pen(buffer, info, Pen{0.5, 0.5, false});
  return buffer;
}

// A test for each element, with its name.
class ForEachElement : public testing::TestWithParam<const char *> {};

inline std::string element_name(const testing::TestParamInfo<const char *> &info) {
  return info.param;
}

}  // namespace nox::test

#endif  // NOXVISUALS_EVERY_ELEMENT_H_
