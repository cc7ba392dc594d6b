#include "video/nox_video_frame.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "video/aligned_alloc.h"

namespace {

struct FormatName {
  std::uint32_t format;
  const char *name;
};

constexpr FormatName kFormatNames[] = {
    {0x100, "I420_BT601_0_255"},  {0x101, "I420_BT601_16_235"}, {0x102, "I420_BT709_0_255"},
    {0x103, "I420_BT709_16_235"}, {0x180, "A420_BT601_0_255"},  {0x181, "A420_BT601_16_235"},
    {0x182, "A420_BT709_0_255"},  {0x183, "A420_BT709_16_235"}, {kNoxFormatRgb, "RGB"},
    {kNoxFormatRgbx, "RGBx"},     {kNoxFormatRgba, "RGBA"},     {kNoxFormatBgr, "BGR"},
    {kNoxFormatBgrx, "BGRx"},     {kNoxFormatBgra, "BGRA"},     {0x400, "GRAY_BT601_0_255"},
    {0x401, "GRAY_BT601_16_235"}, {0x402, "GRAY_BT709_0_255"},  {0x403, "GRAY_BT709_16_235"},
    {kNoxFormatCairo, "CAIRO"},
};

void set_plane(NoxVideoFrame *frame, int plane, std::int32_t stride, std::int32_t width,
               std::int32_t height) {
  frame->strides[plane] = stride;
  frame->plane_widths[plane] = width;
  frame->plane_heights[plane] = height;
}

// Bytes of a packed row; a width whose row no stride can tell gives 0, and so no picture, and a
// width below 0 a stride below 0, whatever their product.
std::int32_t packed_stride(std::uint32_t format, std::int32_t width) {
  using Limits = std::numeric_limits<std::int32_t>;
  const bool three_bytes = format == kNoxFormatRgb || format == kNoxFormatBgr;
  const std::int64_t stride = std::int64_t{width} * (three_bytes ? 3 : 4);
  if (stride > Limits::max()) return 0;
  return static_cast<std::int32_t>(std::max<std::int64_t>(stride, Limits::min()));
}

void set_geometry(NoxVideoFrame *frame) {
  const std::int32_t width = frame->width;
  const std::int32_t height = frame->height;
  frame->n_planes = 1;
  if ((frame->format & kNoxFormatGray) != 0) {
    set_plane(frame, 0, width, width, height);
  } else if ((frame->format & kNoxFormatPlanar) != 0) {
    frame->n_planes = 3;
    set_plane(frame, 0, width, width, height);
    set_plane(frame, 1, width / 2, width / 2, height / 2);
    set_plane(frame, 2, width / 2, width / 2, height / 2);
    if ((frame->format & kNoxFormatAlpha) != 0) {
      frame->n_planes = 4;
      set_plane(frame, 3, width, width, height);
    }
  } else {
    set_plane(frame, 0, packed_stride(frame->format, width), width, height);
  }
}

std::uint8_t *alloc_plane(std::int32_t stride, std::int32_t height) {
  if (stride < 0 || height < 0) return nullptr;
  const std::size_t size = static_cast<std::size_t>(stride) * static_cast<std::size_t>(height);
  return static_cast<std::uint8_t *>(nox_aligned_alloc(kNoxAlignment, size));
}

}  // namespace

void nox_video_frame_alloc(NoxVideoFrame *frame, std::uint32_t format, std::int32_t width,
                           std::int32_t height) {
  *frame = NoxVideoFrame{};
  frame->format = format;
  frame->width = width;
  frame->height = height;
  set_geometry(frame);
  for (int p = 0; p < frame->n_planes; ++p) {
    frame->planes[p] = alloc_plane(frame->strides[p], height);
  }
}

void nox_video_frame_free_planes(NoxVideoFrame *frame) {
  for (int p = 0; p < frame->n_planes; ++p) {
    nox_aligned_free(frame->planes[p]);
    frame->planes[p] = nullptr;
  }
}

const char *nox_video_format_to_string(std::uint32_t format) {
  for (const FormatName &entry : kFormatNames) {
    if (entry.format == format) return entry.name;
  }
  return "";
}
