// Whole elements under the stopwatch: buffers that are in no cache, pushed through a piece of a
// pipeline.
#ifndef NOXVISUALS_ELEMENT_RUN_H_
#define NOXVISUALS_ELEMENT_RUN_H_

#include <benchmark/benchmark.h>
#include <gst/check/gstharness.h>
#include <gst/video/video.h>

#include <cstddef>
#include <functional>
#include <vector>

#include "support/frame_pool.h"
#include "support/video_buffer.h"

namespace nox::bench {

// Buffers of one format, together larger than the last-level cache.
class BufferPool {
 public:
  // `draw` fills one buffer; the others are copies of it.
  BufferPool(const GstVideoInfo &info, const std::function<void(GstBuffer *)> &draw) : info_(info) {
    GstBuffer *first = test::new_video_buffer(info);
    draw(first);
    buffers_.push_back(first);
    const std::size_t count = cold_pool_bytes() / GST_VIDEO_INFO_SIZE(&info) + 1;
    while (buffers_.size() < count) buffers_.push_back(gst_buffer_copy_deep(first));
  }
  ~BufferPool() {
    for (GstBuffer *buffer : buffers_) gst_buffer_unref(buffer);
  }
  BufferPool(const BufferPool &) = delete;
  BufferPool &operator=(const BufferPool &) = delete;

  const GstVideoInfo &info() const { return info_; }
  // A new reference to the next buffer; the pool keeps its own, as a tee would.
  GstBuffer *next() {
    place_ = (place_ + 1) % buffers_.size();
    return gst_buffer_ref(buffers_[place_]);
  }

 private:
  GstVideoInfo info_;
  std::vector<GstBuffer *> buffers_;
  std::size_t place_ = 0;
};

// One iteration pushes one buffer through `description` and drops what comes out.
inline void push_through(benchmark::State &state, const char *description, BufferPool *pool) {
  GstHarness *harness = gst_harness_new_parse(description);
  gst_harness_set_drop_buffers(harness, TRUE);
  gst_harness_set_src_caps(harness, gst_video_info_to_caps(&pool->info()));
  for (auto _ : state) gst_harness_push(harness, pool->next());
  gst_harness_teardown(harness);
}

}  // namespace nox::bench

#endif  // NOXVISUALS_ELEMENT_RUN_H_
