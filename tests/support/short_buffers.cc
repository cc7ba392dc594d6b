#include "support/short_buffers.h"

#include <algorithm>
#include <cstdint>

#include "support/guarded_memory.h"
#include "support/video_buffer.h"
#include "video/plane_memory.h"

namespace nox::test {

namespace {

struct Place {
  int memory;
  std::int64_t offset;  // of the first sample in its memory
  int stride;
};

struct Layout {
  const char *name;
  Place planes[4];
};

struct Size {
  std::int64_t width, height;
};

Size plane_size(const GstVideoInfo &info, int p) {
  return {GST_VIDEO_INFO_COMP_WIDTH(&info, p), GST_VIDEO_INFO_COMP_HEIGHT(&info, p)};
}

// One plane behind the other in a memory, each row with `padding` bytes for luma and half as many
// for chroma. The first sample of a row comes behind `before` of them (luma; chroma likewise).
Layout one_behind_the_other(const char *name, const GstVideoInfo &info, int padding, int before,
                            bool apart, bool upwards) {
  Layout layout{name, {}};
  std::int64_t next = 0;
  for (int p = 0; p < static_cast<int>(GST_VIDEO_INFO_N_PLANES(&info)); ++p) {
    const Size size = plane_size(info, p);
    const int part = p == 1 || p == 2 ? 2 : 1;
    const std::int64_t stride = size.width + padding / part;
    const std::int64_t begin = apart ? 0 : next;
    next += stride * size.height;
    const std::int64_t row_0 = upwards ? stride * (size.height - 1) : 0;
    layout.planes[p] = {apart ? p : 0, begin + row_0 + before / part,
                        static_cast<int>(upwards ? -stride : stride)};
  }
  return layout;
}

Layout u_and_v_side_by_side(const GstVideoInfo &info) {
  Layout layout = one_behind_the_other("U and V side by side", info, 0, 0, false, false);
  const Size chroma = plane_size(info, 1);
  const int stride = static_cast<int>(2 * chroma.width);
  layout.planes[1].stride = layout.planes[2].stride = stride;
  layout.planes[2].offset = layout.planes[1].offset + chroma.width;
  // An alpha plane in front of them, so that V stays the last one.
  if (GST_VIDEO_INFO_N_PLANES(&info) > 3) {
    const Size alpha = plane_size(info, 3);
    layout.planes[3].offset = layout.planes[1].offset;
    for (int p : {1, 2}) layout.planes[p].offset += alpha.width * alpha.height;
  }
  return layout;
}

std::int64_t end_of_samples(const GstVideoInfo &info, const Place &place, int p) {
  const Size size = plane_size(info, p);
  return place.offset + std::max<std::int64_t>(0, place.stride * (size.height - 1)) + size.width;
}

// A buffer of memories of these sizes, up to the first that is 0, with a GstVideoMeta.
GstBuffer *new_guarded_buffer(const GstVideoInfo &info, const std::int64_t (&sizes)[4],
                              gsize (&offsets)[4], gint (&strides)[4]) {
  constexpr std::uint8_t kNoSample = 0x5A;
  GstBuffer *buffer = gst_buffer_new();
  for (int m = 0; m < 4 && sizes[m] > 0; ++m) {
    gst_buffer_append_memory(buffer, new_guarded_memory(static_cast<gsize>(sizes[m])));
  }
  gst_buffer_memset(buffer, 0, kNoSample, gst_buffer_get_size(buffer));
  gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_INFO_FORMAT(&info),
                                 static_cast<guint>(GST_VIDEO_INFO_WIDTH(&info)),
                                 static_cast<guint>(GST_VIDEO_INFO_HEIGHT(&info)),
                                 GST_VIDEO_INFO_N_PLANES(&info), offsets, strides);
  return buffer;
}

GstBuffer *new_short_buffer(const GstVideoInfo &info, const Layout &layout) {
  const auto planes = static_cast<int>(GST_VIDEO_INFO_N_PLANES(&info));
  std::int64_t sizes[4] = {};
  for (int p = 0; p < planes; ++p) {
    std::int64_t &size = sizes[layout.planes[p].memory];
    size = std::max(size, end_of_samples(info, layout.planes[p], p));
  }
  gsize offsets[4] = {};
  gint strides[4] = {};
  for (int p = 0; p < planes; ++p) {
    const Place &place = layout.planes[p];
    for (int m = 0; m < place.memory; ++m) offsets[p] += static_cast<gsize>(sizes[m]);
    offsets[p] += static_cast<gsize>(place.offset);
    strides[p] = place.stride;
  }
  return new_guarded_buffer(info, sizes, offsets, strides);
}

}  // namespace

std::vector<ShortBuffer> short_buffers(GstBuffer *buffer, const GstVideoInfo &info) {
  const Layout layouts[] = {
      one_behind_the_other("no padding behind the last row", info, 16, 0, false, false),
      one_behind_the_other("a memory for each plane", info, 6, 0, true, false),
      one_behind_the_other("left columns cut off", info, 8, 8, false, false),
      one_behind_the_other("columns cut off on both sides", info, 40, 8, false, false),
      one_behind_the_other("rows upwards", info, 10, 10, false, true),
      u_and_v_side_by_side(info),
  };
  GstVideoFrame mapped;
  gst_video_frame_map(&mapped, &info, buffer, GST_MAP_READ);
  NoxVideoFrame picture;
  nox_video_frame_from_gst_video_frame(&picture, &mapped);
  std::vector<ShortBuffer> buffers;
  for (const Layout &layout : layouts) {
    buffers.push_back({layout.name, BufferPtr(new_short_buffer(info, layout))});
    write_picture(buffers.back().buffer.get(), info, picture);
  }
  gst_video_frame_unmap(&mapped);
  return buffers;
}

BufferPtr buffer_with_a_divided_plane(const GstVideoInfo &info) {
  const auto size = static_cast<std::int64_t>(GST_VIDEO_INFO_SIZE(&info));
  const std::int64_t first = GST_VIDEO_INFO_PLANE_STRIDE(&info, 0) * 3 / 2;
  gsize offsets[4] = {};
  gint strides[4] = {};
  std::copy_n(info.offset, 4, offsets);
  std::copy_n(info.stride, 4, strides);
  return BufferPtr(new_guarded_buffer(info, {first, size - first}, offsets, strides));
}

}  // namespace nox::test
