// Pictures with any number of codes, whole, broken and cut, through a decoder that is used again
// and again. What it finds depends on the samples alone: not on strides, nor on the pictures
// before.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz_input.h"
#include "qr/decoder.h"
#include "support/qr_sample.h"

namespace {

using nox::fuzz::Input;
using nox::fuzz::require;
using nox::qr::Code;
using nox::qr::Decoder;
using nox::qr::Luma;
using nox::qr::Mirrored;

constexpr std::int32_t kLargest = 120;
constexpr int kMostPictures = 3;

struct Picture {
  std::vector<std::uint8_t> samples;
  Luma luma;

  Picture(std::int32_t width, std::int32_t height, std::int32_t padding)
      : samples(static_cast<std::size_t>((width + padding) * height), 255),
        luma{samples.data(), width + padding, width, height} {}
  Picture(const Picture &) = delete;
  Picture &operator=(const Picture &) = delete;

  std::uint8_t *row(std::int32_t y) { return samples.data() + y * luma.stride; }
};

void draw_code(Input *input, Picture *picture) {
  NoxVideoFrame frame{};
  frame.width = picture->luma.width;
  frame.height = picture->luma.height;
  frame.planes[0] = picture->samples.data();
  frame.strides[0] = static_cast<std::int32_t>(picture->luma.stride);
  const int module = input->next() % 4 + 1;
  const std::int32_t left = input->between(-20, kLargest), top = input->between(-20, kLargest);
  nox::test::draw_qr_sample(&frame, left, top, module);
}

void draw_rectangle(Input *input, Picture *picture) {
  const std::int32_t left = input->next() % picture->luma.width;
  const std::int32_t top = input->next() % picture->luma.height;
  const std::int32_t columns = std::min(input->next() % 16, picture->luma.width - left);
  const std::int32_t rows = std::min(input->next() % 16, picture->luma.height - top);
  const std::uint8_t value = input->next();
  for (std::int32_t y = top; y < top + rows; ++y) {
    std::fill_n(picture->row(y) + left, columns, value);
  }
}

void mirror(Picture *picture) {
  for (std::int32_t y = 0; y < picture->luma.height; ++y) {
    std::reverse(picture->row(y), picture->row(y) + picture->luma.width);
  }
}

void draw(Input *input, Picture *picture) {
  if (input->next() % 8 == 0) input->fill(picture->samples.data(), picture->samples.size());
  for (int i = input->next() % 8; i > 0; --i) {
    if (input->next() % 4 == 0) {
      draw_rectangle(input, picture);
    } else {
      draw_code(input, picture);
    }
  }
  for (int i = input->next() % 8; i > 0; --i) draw_rectangle(input, picture);
  if (input->next() % 4 == 0) mirror(picture);
}

bool same_code(const Code &a, const Code &b) {
  const auto same_corner = [](const nox::qr::Corner &p, const nox::qr::Corner &q) {
    return p.x == q.x && p.y == q.y;
  };
  return std::equal(a.corners.begin(), a.corners.end(), b.corners.begin(), same_corner) &&
         a.size == b.size && a.version == b.version && a.payload == b.payload && a.error == b.error;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  Input input(bytes, size);
  const Mirrored mirrored = input.flag() ? Mirrored::kRead : Mirrored::kNotRead;
  Decoder used(mirrored);
  for (int i = 0; i < kMostPictures && !input.empty(); ++i) {
    const std::int32_t width = input.between(1, kLargest), height = input.between(1, kLargest);
    Picture picture(width, height, input.next() % 8);
    draw(&input, &picture);
    Picture packed(width, height, 0);
    for (std::int32_t y = 0; y < height; ++y) std::copy_n(picture.row(y), width, packed.row(y));
    Decoder fresh(mirrored);
    require(used.decode(picture.luma) && fresh.decode(packed.luma), "there is memory");
    const std::vector<Code> &codes = used.codes();
    require(std::equal(codes.begin(), codes.end(), fresh.codes().begin(), fresh.codes().end(),
                       same_code),
            "the codes");
    for (const Code &code : codes) {
      require((code.error == nullptr) == (code.version >= 1 && code.version <= 40), "the version");
      require(code.error == nullptr || code.payload.empty(), "what is not read has no payload");
    }
  }
  return 0;
}
