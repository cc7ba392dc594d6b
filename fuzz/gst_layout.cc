#include "gst_layout.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "support/qr_sample.h"

namespace nox::fuzz {

namespace {

// Room for GstBuffer's 16 memories is never used up.
constexpr int kMostSplits = 3;

}  // namespace

PackedPicture::PackedPicture(std::uint32_t format, std::int32_t width, std::int32_t height) {
  record_.format = format;
  record_.width = width;
  record_.height = height;
  record_.n_planes = (format & kNoxFormatAlpha) != 0 ? 4 : 3;
  for (int p = 0; p < record_.n_planes; ++p) {
    const bool chroma = p == 1 || p == 2;
    record_.plane_widths[p] = record_.strides[p] = chroma ? (width + 1) / 2 : width;
    record_.plane_heights[p] = chroma ? (height + 1) / 2 : height;
    planes_[p].resize(static_cast<std::size_t>(record_.strides[p]) *
                      static_cast<std::size_t>(record_.plane_heights[p]));
    record_.planes[p] = planes_[p].data();
  }
}

GstLayout::GstLayout(Input *input, const GstVideoInfo &info)
    : info_(info),
      width_(GST_VIDEO_INFO_WIDTH(&info)),
      height_(GST_VIDEO_INFO_HEIGHT(&info)),
      meta_(input->next() % 4 != 0) {
  // A picture that was cropped by its caps alone is mapped whole.
  if (meta_ && input->next() % 16 == 0) {
    width_ += input->next() % 8;
    height_ += input->next() % 8;
  }
  const int count = static_cast<int>(GST_VIDEO_INFO_N_PLANES(&info));
  for (int p = 0; p < count; ++p) {
    const bool chroma = p == 1 || p == 2;
    planes_.push_back({static_cast<std::int64_t>(GST_VIDEO_INFO_PLANE_OFFSET(&info, p)),
                       GST_VIDEO_INFO_PLANE_STRIDE(&info, p), chroma ? (width_ + 1) / 2 : width_,
                       chroma ? (height_ + 1) / 2 : height_, 0, 0});
  }
  size_ = static_cast<std::int64_t>(GST_VIDEO_INFO_SIZE(&info));
  if (meta_) place(input);
  split(input);
}

void GstLayout::place(Input *input) {
  size_ = input->next() % 70;
  int order[] = {0, 1, 2, 3};
  const auto count = static_cast<int>(planes_.size());
  for (int p = 1; p < count; ++p) std::swap(order[p], order[input->next() % (p + 1)]);
  const bool side_by_side = input->next() % 4 == 0;
  for (int i = 0; i < count; ++i) {
    const int p = order[i];
    if (!side_by_side || p == 0 || p == 3) {
      place_block(input, &planes_[static_cast<std::size_t>(p)]);
    } else if (p == 1) {
      place_side_by_side(input, &planes_[1], &planes_[2]);
    }
  }
  cut(input);
}

void GstLayout::place_block(Input *input, Plane *plane) {
  const std::uint8_t kind = input->next();
  const std::int32_t stride = plane->width + (kind % 2 == 0 ? 0 : input->next() % 70);
  const bool upwards = kind % 32 == 30;
  plane->stride = upwards ? -stride : stride;
  plane->offset = size_ + (upwards ? std::int64_t{stride} * (plane->height - 1) : 0);
  size_ += std::int64_t{stride} * plane->height + (kind % 4 == 3 ? input->next() % 20 : 0);
}

void GstLayout::place_side_by_side(Input *input, Plane *first, Plane *second) {
  const std::int32_t apart = first->width + input->next() % 8;
  first->stride = second->stride = apart + second->width + input->next() % 8;
  first->offset = size_;
  second->offset = size_ + apart;
  size_ += std::int64_t{first->stride} * first->height;
}

// Now and then the memory ends with the last sample that there is, or a little behind it.
void GstLayout::cut(Input *input) {
  const std::uint8_t kind = input->next();
  if (kind % 4 != 0) return;
  std::int64_t end = 0;
  for (const Plane &plane : planes_) {
    const std::int64_t last_row = plane.offset + std::int64_t{plane.stride} * (plane.height - 1);
    end = std::max({end, last_row + plane.width, plane.offset + plane.width});
  }
  size_ = std::min(size_, end + kind / 64);
}

// Without a meta GStreamer maps all memories as one, with one the memory of a plane's first byte.
void GstLayout::split(Input *input) {
  const std::uint8_t kind = input->next();
  const auto size = static_cast<std::int32_t>(size_);
  for (int i = kind % 8 < kMostSplits ? kind % 8 : 0; i > 0 && size > 1; --i) {
    const bool between_planes = kind % 16 < 8;
    const auto p = static_cast<std::size_t>(input->next()) % planes_.size();
    const std::int64_t at = between_planes ? planes_[p].offset : input->between(1, size - 1);
    if (at > 0 && at < size_) splits_.push_back(at);
  }
  std::sort(splits_.begin(), splits_.end());
  splits_.erase(std::unique(splits_.begin(), splits_.end()), splits_.end());
  for (Plane &plane : planes_) {
    plane.begin = 0;
    plane.end = size_;
    if (!meta_) continue;
    for (const std::int64_t at : splits_) {
      if (at <= plane.offset) plane.begin = at;
      if (at > plane.offset) plane.end = std::min(plane.end, at);
    }
  }
}

std::int64_t GstLayout::at(const Plane &plane, std::int32_t x, std::int32_t y) const {
  const std::int64_t at = plane.offset + std::int64_t{plane.stride} * y + x;
  return at >= plane.begin && at < plane.end ? at : -1;
}

// A block of exactly these bytes, so that the sanitizer sees a step beyond.
GstMemory *GstLayout::new_memory(const std::vector<std::uint8_t> &bytes, std::size_t begin,
                                 std::size_t end, bool read_only) const {
  void *block = g_malloc(end - begin);
  std::memcpy(block, bytes.data() + begin, end - begin);
  return gst_memory_new_wrapped(read_only ? GST_MEMORY_FLAG_READONLY : GstMemoryFlags{}, block,
                                end - begin, 0, end - begin, block, g_free);
}

GstBuffer *GstLayout::new_buffer(Input *input) const {
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size_));
  input->fill(bytes.data(), bytes.size());
  const std::uint8_t kind = input->next();
  if (kind % 8 == 1) draw_pen(input, &bytes);
  if (kind % 8 == 2) draw_code(input, &bytes);
  GstBuffer *buffer = gst_buffer_new();
  std::size_t begin = 0;
  for (std::size_t i = 0; i <= splits_.size(); ++i) {
    const auto end = static_cast<std::size_t>(i < splits_.size() ? splits_[i] : size_);
    gst_buffer_append_memory(buffer, new_memory(bytes, begin, end, kind / 8 % 8 == 7));
    begin = end;
  }
  if (!meta_) return buffer;
  gsize offsets[GST_VIDEO_MAX_PLANES] = {};
  gint strides[GST_VIDEO_MAX_PLANES] = {};
  for (std::size_t p = 0; p < planes_.size(); ++p) {
    offsets[p] = static_cast<gsize>(planes_[p].offset);
    strides[p] = planes_[p].stride;
  }
  gst_buffer_add_video_meta_full(buffer, GST_VIDEO_FRAME_FLAG_NONE, GST_VIDEO_INFO_FORMAT(&info_),
                                 static_cast<guint>(width_), static_cast<guint>(height_),
                                 static_cast<guint>(planes_.size()), offsets, strides);
  return buffer;
}

// A bright spot in a coloured field.
void GstLayout::draw_pen(Input *input, std::vector<std::uint8_t> *bytes) const {
  const std::size_t colour = input->flag() ? 2 : 1;
  const int left = input->next(), top = input->next();
  for (std::size_t p : {std::size_t{0}, colour}) {
    const Plane &plane = planes_[p];
    const int margin = p == 0 ? 6 : 2;
    for (std::int32_t y = 0; y < plane.height; ++y) {
      for (std::int32_t x = 0; x < plane.width; ++x) {
        const std::int64_t where = at(plane, x, y);
        const bool inside = x * 16 / plane.width >= left % 8 + margin / 2 &&
                            x * 16 / plane.width < left % 8 + 8 - margin / 2 &&
                            y * 16 / plane.height >= top % 8 + margin / 2 &&
                            y * 16 / plane.height < top % 8 + 8 - margin / 2;
        if (where >= 0) (*bytes)[static_cast<std::size_t>(where)] = inside ? 230 : 40;
      }
    }
  }
}

void GstLayout::draw_code(Input *input, std::vector<std::uint8_t> *bytes) const {
  PackedPicture picture(format(), width_, height_);
  std::fill(picture.plane(0).begin(), picture.plane(0).end(), std::uint8_t{128});
  NoxVideoFrame frame = picture.get();
  const int module = input->next() % 4 + 1;
  const int left = input->next() % 16, top = input->next() % 16;
  nox::test::draw_qr_sample(&frame, left, top, module);
  for (std::int32_t y = 0; y < height_; ++y) {
    for (std::int32_t x = 0; x < width_; ++x) {
      const std::int64_t where = at(planes_[0], x, y);
      if (where < 0) continue;
      (*bytes)[static_cast<std::size_t>(where)] = frame.planes[0][y * width_ + x];
    }
  }
}

std::vector<std::uint8_t> GstLayout::bytes_of(GstBuffer *buffer) const {
  require(gst_buffer_get_size(buffer) == static_cast<gsize>(size_), "the size of a buffer");
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size_));
  gst_buffer_extract(buffer, 0, bytes.data(), bytes.size());
  return bytes;
}

void GstLayout::read(GstBuffer *buffer, PackedPicture *picture) const {
  const std::vector<std::uint8_t> bytes = bytes_of(buffer);
  for (std::size_t p = 0; p < planes_.size(); ++p) {
    const Plane &plane = planes_[p];
    std::uint8_t *sample = picture->plane(static_cast<int>(p)).data();
    for (std::int32_t y = 0; y < plane.height; ++y) {
      for (std::int32_t x = 0; x < plane.width; ++x) {
        const std::int64_t where = at(plane, x, y);
        *sample++ = where < 0 ? std::uint8_t{0} : bytes[static_cast<std::size_t>(where)];
      }
    }
  }
}

bool GstLayout::is_whole(const Plane &plane) const {
  return at(plane, 0, 0) >= 0 && at(plane, plane.width - 1, 0) >= 0 &&
         at(plane, 0, plane.height - 1) >= 0 && at(plane, plane.width - 1, plane.height - 1) >= 0;
}

bool GstLayout::is_drawn(GstBuffer *in, GstBuffer *out, PackedPicture *drawing) const {
  constexpr int kAny = -1;
  const std::vector<std::uint8_t> before = bytes_of(in), after = bytes_of(out);
  std::vector<int> expected(before.begin(), before.end());
  const auto put = [&](std::int64_t where, int value) {
    if (where >= 0) expected[static_cast<std::size_t>(where)] = value;
  };
  for (std::size_t p = 0; p < 3; ++p) {
    const Plane &plane = planes_[p];
    const int page = is_whole(plane) ? (p == 0 ? 255 : 128) : kAny;
    for (std::int32_t y = 0; y < plane.height; ++y) {
      for (std::int32_t x = 0; x < std::abs(plane.stride); ++x) put(at(plane, x, y), page);
    }
  }
  for (std::size_t p = 0; p < planes_.size(); ++p) {
    const Plane &plane = planes_[p];
    const std::uint8_t *sample = drawing->plane(static_cast<int>(p)).data();
    for (std::int32_t y = 0; y < plane.height; ++y) {
      for (std::int32_t x = 0; x < plane.width; ++x) put(at(plane, x, y), *sample++);
    }
  }
  return std::equal(after.begin(), after.end(), expected.begin(),
                    [](std::uint8_t byte, int wanted) { return wanted == kAny || byte == wanted; });
}

}  // namespace nox::fuzz
