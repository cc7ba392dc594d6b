// Buffers whose memory ends before the padding of a plane's last row.
#ifndef SUPPORT_SHORT_BUFFERS_H_
#define SUPPORT_SHORT_BUFFERS_H_

#include <gst/video/video.h>

#include <string>
#include <vector>

#include "support/harness.h"

namespace nox::test {

struct ShortBuffer {
  std::string layout;
  BufferPtr buffer;
};

// The picture of `buffer`, planar 4:2:0, in every layout that leaves out some padding: each memory
// ends with its last sample, at an unreadable page. Bytes that are no samples are 0x5A.
std::vector<ShortBuffer> short_buffers(GstBuffer *buffer, const GstVideoInfo &info);

// A picture whose first plane begins in one memory and goes on in another one, where no map of the
// plane reaches it. Its bytes are 0x5A.
BufferPtr buffer_with_a_divided_plane(const GstVideoInfo &info);

}  // namespace nox::test

#endif  // SUPPORT_SHORT_BUFFERS_H_
