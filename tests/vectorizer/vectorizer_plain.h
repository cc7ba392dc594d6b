// The vectorizer step by step, each step a pass over the whole frame.
#ifndef VECTORIZER_VECTORIZER_PLAIN_H_
#define VECTORIZER_VECTORIZER_PLAIN_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "video/nox_video_frame.h"

namespace nox::test {

// One byte per pixel, 0 or 1, with the columns beyond the width that a mask row stores.
class PlainMask {
 public:
  PlainMask(std::int32_t width, std::int32_t height)
      : width_(width),
        stored_((width + 127) / 128 * 128),
        height_(height),
        bits_(static_cast<std::size_t>(stored_) * static_cast<std::size_t>(height)) {}

  std::int32_t width() const { return width_; }
  std::int32_t stored() const { return stored_; }
  std::int32_t height() const { return height_; }
  // 0 outside.
  bool get(std::int32_t x, std::int32_t y) const {
    return x >= 0 && x < stored_ && y >= 0 && y < height_ && bits_[at(x, y)] != 0;
  }
  void set(std::int32_t x, std::int32_t y, bool value) { bits_[at(x, y)] = value ? 1 : 0; }
  const std::vector<std::uint8_t> &bits() const { return bits_; }

 private:
  std::size_t at(std::int32_t x, std::int32_t y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(stored_) +
           static_cast<std::size_t>(x);
  }

  std::int32_t width_;
  std::int32_t stored_;
  std::int32_t height_;
  std::vector<std::uint8_t> bits_;
};

// The last masks, with the number of those that have each pixel.
class PlainHistory {
 public:
  explicit PlainHistory(std::size_t capacity) : capacity_(capacity) {}

  void clear();
  void add(const PlainMask &mask);
  // In every mask; nothing as long as there are fewer than the capacity.
  PlainMask in_all() const;
  PlainMask in_any() const;

 private:
  PlainMask where_count_is_at_least(std::size_t least) const;

  std::size_t capacity_;
  std::size_t next_ = 0;
  std::vector<PlainMask> masks_;
  std::vector<std::uint16_t> counts_;
};

PlainMask edges_plain(const NoxVideoFrame &in);
PlainMask close_plain(const PlainMask &mask);

class PlainVectorizer {
 public:
  void process(const NoxVideoFrame &in, const NoxVideoFrame &out);

 private:
  std::int32_t width_ = 0;
  std::int32_t height_ = 0;
  PlainHistory short_{100};
  PlainHistory long_{500};
};

}  // namespace nox::test

#endif  // VECTORIZER_VECTORIZER_PLAIN_H_
