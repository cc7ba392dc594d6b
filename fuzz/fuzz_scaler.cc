// Any pair of sizes, any strides and any number of planes: a selection and a frame through it,
// compared with the plain reference. The planes are blocks of exactly the bytes up to their last
// sample, so that the sanitizers see every stray one.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz_input.h"
#include "scaler/scaler.h"
#include "scaler/scaler_plain.h"

namespace {

using nox::fuzz::Input;
using nox::fuzz::require;
using nox::test::Picture;
using nox::test::PlainSizes;

struct Frame {
  NoxVideoFrame record = {};
  std::vector<std::uint8_t> planes[4];

  // `may_lack`: now and then a plane lacks a column or a row, and so is left alone.
  Frame(ScalerSize size, bool may_lack, Input *input) {
    record.width = size.width;
    record.height = size.height;
    record.n_planes = input->between(1, 4);
    for (int p = 0; p < record.n_planes; ++p) {
      const std::int32_t part = p == 1 || p == 2 ? 2 : 1;
      const int lack = may_lack ? input->next() % 16 : 0;
      const std::int32_t width = std::max(size.width / part - (lack == 1 ? 1 : 0), 0);
      const std::int32_t height = std::max(size.height / part - (lack == 2 ? 1 : 0), 0);
      record.plane_widths[p] = width;
      record.plane_heights[p] = height;
      record.strides[p] = width + input->next() % 80;
      const std::int32_t bytes = height == 0 ? 0 : (height - 1) * record.strides[p] + width;
      planes[p].resize(static_cast<std::size_t>(bytes));
      input->fill(planes[p].data(), planes[p].size());
      record.planes[p] = planes[p].data();
    }
  }
};

Picture view_of(const NoxVideoFrame &frame, int p) {
  Picture view(frame.plane_widths[p], frame.plane_heights[p]);
  for (int y = 0; y < view.height; ++y) {
    std::copy_n(frame.planes[p] + static_cast<std::ptrdiff_t>(y) * frame.strides[p], view.width,
                view.samples.data() + static_cast<std::ptrdiff_t>(y) * view.width);
  }
  return view;
}

// What the reference makes of plane p; empty where the plane is left as it is. Boxes fill a plane
// of any size, filters only one that has the whole picture.
Picture scaled(const Frame &src, const Frame &dst, int p, PlainSizes sizes) {
  if (p >= src.record.n_planes || p >= dst.record.n_planes) return {};
  const Picture view = view_of(src.record, p);
  const int width = dst.record.plane_widths[p], height = dst.record.plane_heights[p];
  if (nox::test::select_plain(sizes) == 0) {
    return nox::test::box_plain(view, sizes.in_width / sizes.out_width, width, height);
  }
  sizes.half_plane = p == 1 || p == 2;
  const int part = sizes.half_plane ? 2 : 1;
  const bool whole = width >= sizes.out_width / part && height >= sizes.out_height / part;
  return whole ? nox::test::scale_plain(view, sizes) : Picture();
}

// The bytes of plane p of `dst` with `picture` drawn over its samples.
std::vector<std::uint8_t> drawn(const Frame &dst, int p, const Picture &picture) {
  std::vector<std::uint8_t> bytes = dst.planes[p];
  if (picture.samples.empty()) return bytes;
  for (int y = 0; y < picture.height; ++y) {
    std::copy_n(picture.samples.data() + static_cast<std::ptrdiff_t>(y) * picture.width,
                picture.width,
                bytes.data() + static_cast<std::ptrdiff_t>(y) * dst.record.strides[p]);
  }
  return bytes;
}

void scale_a_frame(Input *input, Scaler *scaler, ScalerSize in, ScalerSize out) {
  const PlainSizes sizes = {in.width, in.height, out.width, out.height};
  const int id = nox::test::select_plain(sizes);
  require(scaler_select(scaler, in, out) == (id == -1 ? 0 : 1), "the result of the selection");
  require(scaler->ops->id() == id, "the selection");
  const Frame src(in, false, input);
  Frame dst(out, true, input);
  std::vector<std::uint8_t> expected[4];
  for (int p = 0; p < 4; ++p) expected[p] = drawn(dst, p, scaled(src, dst, p, sizes));
  scaler_process(scaler, &src.record, &dst.record);
  for (int p = 0; p < 4; ++p) require(dst.planes[p] == expected[p], "a plane");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  Input input(bytes, size);
  Scaler scaler;
  scaler_reset(&scaler);
  for (int round = 0; round < 2; ++round) {
    const std::int32_t step = input.between(0, 3) == 0 ? 1 : 8;
    const ScalerSize out = {step * input.between(-1, 24), input.between(-1, 100)};
    // Any ratio, or a whole one.
    const std::int32_t factor = input.next() % 8;
    ScalerSize in = {input.between(-1, 700), input.between(-1, 300)};
    if (factor == 1 || factor == 2) in = {factor * out.width, factor * out.height};
    scale_a_frame(&input, &scaler, in, out);
  }
  scaler_destroy(&scaler);
  return 0;
}
