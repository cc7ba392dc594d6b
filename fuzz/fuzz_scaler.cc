// Any pair of sizes, any strides and any number of planes: a selection and a frame through it. The
// planes are blocks of exactly the bytes that they need, so that the sanitizers see every stray
// one.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "scaler/scaler.h"

namespace {

// Takes the input from the front; zeros when it is used up.
class Input {
 public:
  Input(const std::uint8_t *data, std::size_t size) : data_(data), size_(size) {}

  std::int32_t between(std::int32_t low, std::int32_t high) {
    std::uint16_t word = 0;
    const std::size_t count = std::min(size_, sizeof(word));
    std::memcpy(&word, data_, count);
    data_ += count;
    size_ -= count;
    return low + word % (high - low + 1);
  }
  void fill(std::vector<std::uint8_t> &bytes) const {
    for (std::size_t i = 0; i < bytes.size() && size_ != 0; ++i) bytes[i] = data_[i % size_];
  }

 private:
  const std::uint8_t *data_;
  std::size_t size_;
};

struct Frame {
  NoxVideoFrame record = {};
  std::vector<std::uint8_t> planes[4];
};

void make_frame(Frame &frame, ScalerSize size, Input &input) {
  NoxVideoFrame &record = frame.record;
  record.width = size.width;
  record.height = size.height;
  record.n_planes = input.between(1, 4);
  for (int p = 0; p < record.n_planes; ++p) {
    const std::int32_t part = p == 1 || p == 2 ? 2 : 1;
    const std::int32_t width = std::max(size.width / part, 0);
    const std::int32_t height = std::max(size.height / part, 0);
    record.plane_widths[p] = width;
    record.plane_heights[p] = height;
    record.strides[p] = width + input.between(0, 80);
    const std::int32_t bytes = height == 0 ? 0 : (height - 1) * record.strides[p] + width;
    frame.planes[p].resize(static_cast<std::size_t>(bytes));
    input.fill(frame.planes[p]);
    record.planes[p] = frame.planes[p].data();
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Input input(data, size);
  Scaler scaler;
  scaler_reset(&scaler);
  for (int round = 0; round < 2; ++round) {
    const std::int32_t step = input.between(0, 3) == 0 ? 1 : 8;
    const ScalerSize out = {step * input.between(-1, 24), input.between(-1, 100)};
    const ScalerSize in = {input.between(-1, 700), input.between(-1, 300)};
    scaler_select(&scaler, in, out);
    Frame src;
    Frame dst;
    make_frame(src, in, input);
    make_frame(dst, out, input);
    scaler_process(&scaler, &src.record, &dst.record);
  }
  scaler_destroy(&scaler);
  return 0;
}
