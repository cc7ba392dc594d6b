// Frames drawn onto frames at any position, with and without alpha, compared with the plain
// reference in every byte that the planes own; and single rows of any alpha.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz_frame.h"
#include "fuzz_input.h"
#include "vectorizer/frame_overlay.h"
#include "vectorizer/frame_overlay_plain.h"

namespace {

using nox::fuzz::Frame;
using nox::fuzz::Input;
using nox::fuzz::require;
using nox::test::blend_plain;

constexpr std::int32_t kMostColumns = 130;
constexpr std::int32_t kMostRows = 20;

// Mostly where something is drawn; else anywhere.
std::int32_t any_position(Input *input, std::int32_t around) {
  if (input->next() % 8 == 0) return static_cast<std::int32_t>(input->word());
  return input->between(-around, around);
}

void draw_frames(Input *input) {
  const auto new_frame = [input] {
    const std::int32_t width = input->between(0, kMostColumns);
    const std::int32_t height = input->between(0, kMostRows);
    return Frame(input, width, height);
  };
  Frame dst = new_frame();
  Frame src = new_frame();
  dst.fill(input);
  src.fill(input);
  Frame expected = dst;
  const std::int32_t x = any_position(input, kMostColumns);
  const std::int32_t y = any_position(input, kMostRows);
  nox::test::video_frame_overlay_plain(expected.get(), src.get(), x, y);
  video_frame_overlay(&dst.get(), &src.get(), x, y);
  require(dst.same_bytes(expected), "a drawing");
}

void blend_rows(Input *input) {
  const std::int32_t samples = input->between(-1, 200);
  const auto size = static_cast<std::size_t>(samples < 0 ? 0 : samples);
  std::vector<std::uint8_t> dst(size), src(size), alpha(2 * size);
  for (std::vector<std::uint8_t> *row : {&dst, &src, &alpha}) input->fill(row->data(), row->size());
  const bool chroma = input->flag();
  std::vector<std::uint8_t> expected(dst);
  for (std::size_t i = 0; i < size; ++i) {
    const int a = chroma ? (alpha[2 * i] + alpha[2 * i + 1] + 1) / 2 : alpha[i];
    expected[i] = blend_plain(dst[i], src[i], a);
  }
  const auto blend = chroma ? blend_row_chroma : blend_row_luma;
  blend(dst.data(), src.data(), alpha.data(), samples);
  require(dst == expected, "a row");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  Input input(bytes, size);
  for (int step = 0; step < 4 && !input.empty(); ++step) {
    if (input.next() % 4 == 0) {
      blend_rows(&input);
    } else {
      draw_frames(&input);
    }
  }
  return 0;
}
