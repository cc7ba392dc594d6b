// Of the frames that come faster than they are looked at, the newest.
#ifndef NOX_VISUALS_STREAM_NEWEST_FRAME_H_
#define NOX_VISUALS_STREAM_NEWEST_FRAME_H_

#include <gst/gst.h>

#include <atomic>
#include <cstdint>

namespace nox::app {

// From now on `queue` keeps one frame: one that comes takes the place of one that waits. Those that
// go are counted in `dropped`, which must outlive the queue: while the stream runs, the count may
// be one behind; when its end leaves the queue, it is exact.
void keep_newest_only(GstElement *queue, std::atomic<std::uint64_t> *dropped);

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_NEWEST_FRAME_H_
