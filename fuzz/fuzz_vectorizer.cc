// Videos through a vectorizer, with changes of size, of strides and of what stands still, drawn in
// place or into another frame, compared with the plain reference in every byte that the planes own.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "fuzz_frame.h"
#include "fuzz_input.h"
#include "vectorizer/vectorizer.h"
#include "vectorizer/vectorizer_plain.h"

namespace {

using nox::fuzz::Frame;
using nox::fuzz::Input;
using nox::fuzz::require;

constexpr std::int32_t kMostColumns = 140;
constexpr std::int32_t kMostRows = 40;
// Samples that one input draws: enough for 700 frames of 16 by 16, which is beyond both histories.
constexpr std::int64_t kMostSamples = 700 * 16 * 16;

struct StateDeleter {
  void operator()(VectorizerState *state) const { vectorizer_free(state); }
};

// What stays from frame to frame: luma of flat, stepped and noisy parts.
class Luma {
 public:
  Luma(Input *input, std::int32_t width, std::int32_t height)
      : width_(width),
        height_(height),
        samples_(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {
    input->fill(samples_.data(), samples_.size());
  }
  void change(Input *input) {
    const std::int32_t left = input->between(0, width_), top = input->between(0, height_);
    const std::int32_t columns = input->between(0, width_ - left);
    const std::int32_t rows = input->between(0, height_ - top);
    const std::uint8_t value = input->next();
    for (std::int32_t y = top; y < top + rows; ++y) std::fill_n(row(y) + left, columns, value);
  }
  void write(Frame *frame) {
    const std::int32_t rows = std::min(height_, frame->get().plane_heights[0]);
    for (std::int32_t y = 0; y < rows; ++y) std::copy_n(row(y), width_, frame->row(0, y));
  }

 private:
  std::uint8_t *row(std::int32_t y) {
    return samples_.data() + static_cast<std::ptrdiff_t>(y) * width_;
  }

  std::int32_t width_;
  std::int32_t height_;
  std::vector<std::uint8_t> samples_;
};

class Twins {
 public:
  // Draws `in` with both, onto itself or onto `out`.
  void draw(const Frame &in, const Frame *out) {
    Frame actual = out == nullptr ? in : *out;
    Frame expected = actual;
    plain_.process(out == nullptr ? expected.get() : in.get(), expected.get());
    const NoxVideoFrame *from = out == nullptr ? &actual.get() : &in.get();
    require(vectorizer_process(state_.get(), from, &actual.get()) == 1, "the result");
    require(actual.same_bytes(expected), "a drawing");
  }

 private:
  std::unique_ptr<VectorizerState, StateDeleter> state_{vectorizer_new()};
  nox::test::PlainVectorizer plain_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  Input input(bytes, size);
  Twins twins;
  std::int64_t samples = 0;
  while (!input.empty() && samples < kMostSamples) {
    const std::int32_t width = input.between(1, kMostColumns);
    const std::int32_t height = input.between(1, kMostRows);
    Luma luma(&input, width, height);
    for (int scene = input.next() % 8; scene >= 0 && samples < kMostSamples; --scene) {
      Frame in(&input, width, height);
      in.fill(&input);
      luma.change(&input);
      luma.write(&in);
      // Now and then the drawing goes into a frame of another size.
      const bool elsewhere = input.next() % 4 == 0;
      const std::int32_t out_width = elsewhere ? input.between(0, kMostColumns) : width;
      const std::int32_t out_height = elsewhere ? input.between(0, kMostRows) : height;
      const Frame out(&input, out_width, out_height);
      const bool in_place = input.flag();
      for (int frames = input.next() % 128; frames >= 0 && samples < kMostSamples; --frames) {
        twins.draw(in, in_place ? nullptr : &out);
        samples += std::int64_t{width} * height;
      }
    }
  }
  return 0;
}
