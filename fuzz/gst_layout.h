// How the planes of a picture lie in a GstBuffer: in any order, with any strides and gaps, in one
// memory or several, with the last row's padding or without it.
#ifndef FUZZ_GST_LAYOUT_H_
#define FUZZ_GST_LAYOUT_H_

#include <gst/video/video.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz_input.h"
#include "video/nox_video_frame.h"

namespace nox::fuzz {

// A picture on its own: packed planes, chroma rounded up.
class PackedPicture {
 public:
  PackedPicture(std::uint32_t format, std::int32_t width, std::int32_t height);
  PackedPicture(const PackedPicture &) = delete;
  PackedPicture &operator=(const PackedPicture &) = delete;

  const NoxVideoFrame &get() const { return record_; }
  std::vector<std::uint8_t> &plane(int p) { return planes_[p]; }

 private:
  NoxVideoFrame record_ = {};
  std::vector<std::uint8_t> planes_[4];
};

class GstLayout {
 public:
  // Any layout that GStreamer can map for `info`.
  GstLayout(Input *input, const GstVideoInfo &info);

  // A new buffer with any content, now and then one that shows a pen or a code, in memory of its
  // own or memory that nobody may write to.
  GstBuffer *new_buffer(Input *input) const;

  // The picture that a buffer of this layout shows; samples that its memory lacks are 0.
  void read(GstBuffer *buffer, PackedPicture *picture) const;
  // Whether `out` is what a drawing makes of `in`: the samples of `drawing`, the page in the
  // padding of luma and chroma, and every other byte as it was. What padding holds is left open for
  // a plane of which the memory lacks samples.
  bool is_drawn(GstBuffer *in, GstBuffer *out, PackedPicture *drawing) const;

  std::uint32_t format() const { return planes_.size() == 4 ? kNoxFormatA420 : kNoxFormatI420; }
  // Of the mapped picture, which may be larger than the caps say.
  std::int32_t width() const { return width_; }
  std::int32_t height() const { return height_; }

 private:
  struct Plane {
    std::int64_t offset;  // of the first sample, in the bytes of all memories
    std::int32_t stride;  // below 0 for rows that run upwards
    std::int32_t width, height;
    std::int64_t begin, end;  // of the memory that is mapped for the plane
  };

  void place(Input *input);
  void place_block(Input *input, Plane *plane);
  void place_side_by_side(Input *input, Plane *first, Plane *second);
  void cut(Input *input);
  void split(Input *input);
  GstMemory *new_memory(const std::vector<std::uint8_t> &bytes, std::size_t begin, std::size_t end,
                        bool read_only) const;
  void draw_pen(Input *input, std::vector<std::uint8_t> *bytes) const;
  void draw_code(Input *input, std::vector<std::uint8_t> *bytes) const;
  std::vector<std::uint8_t> bytes_of(GstBuffer *buffer) const;
  // Where sample (x, y) is, or -1 where the memory lacks it.
  std::int64_t at(const Plane &plane, std::int32_t x, std::int32_t y) const;
  bool is_whole(const Plane &plane) const;

  GstVideoInfo info_;
  std::int32_t width_, height_;
  bool meta_;  // whether a GstVideoMeta tells the layout
  std::vector<Plane> planes_;
  std::int64_t size_ = 0;
  std::vector<std::int64_t> splits_;  // where a memory begins, but for the first
};

}  // namespace nox::fuzz

#endif  // FUZZ_GST_LAYOUT_H_
