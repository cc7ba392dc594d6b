// Frames of any format code and any size: their geometry, every byte of their planes, and their
// names.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fuzz_input.h"
#include "video/aligned_alloc.h"
#include "video/nox_video_frame.h"

// A plane that is too large for the address space is null, with the sanitizer's allocator too.
extern "C" const char *__asan_default_options();
extern "C" const char *__asan_default_options() {
  return "allocator_may_return_null=1";
}

namespace {

using nox::fuzz::Input;
using nox::fuzz::require;

// Planes up to this size are made and written; between it and the address space the system decides
// whether there is memory, which is nothing to try.
constexpr double kSmall = 1 << 20;
constexpr double kBeyondAddresses = 1e15;

struct Plane {
  double stride, width, height;
};

struct Geometry {
  int planes;
  Plane plane[4];
};

double half(double size) {
  return static_cast<double>(static_cast<std::int32_t>(size) / 2);
}

Geometry expected_geometry(std::uint32_t format, double w, double h) {
  const Plane full = {w, w, h};
  const Plane chroma = {half(w), half(w), half(h)};
  if ((format & 0x400) != 0) return {1, {full}};
  if ((format & 0x180) == 0x180) return {4, {full, chroma, chroma, full}};
  if ((format & 0x100) != 0) return {3, {full, chroma, chroma}};
  // A stride that 32 bits cannot tell makes a plane without rows of bytes, or without a block.
  const double stride = w * (format == 0x200 || format == 0x203 ? 3 : 4);
  return {1, {{stride > 2147483647.0 ? 0 : std::max(stride, -2147483648.0), w, h}}};
}

bool has_name(std::uint32_t format) {
  const std::uint32_t family = format & ~3U;
  return family == 0x100 || family == 0x180 || family == 0x400 || family == 0x200 ||
         format == 0x204 || format == 0x205 || format == 0xA05;
}

// Whether the outcome for these planes depends on nothing but the size.
bool decided(const Geometry &geometry, double height) {
  for (int p = 0; p < geometry.planes; ++p) {
    const double bytes = geometry.plane[p].stride * height;
    if (bytes > kSmall && bytes < kBeyondAddresses) return false;
  }
  return true;
}

void check_plane(const NoxVideoFrame &frame, int p, const Plane &wanted) {
  require(frame.strides[p] == wanted.stride && frame.plane_widths[p] == wanted.width &&
              frame.plane_heights[p] == wanted.height,
          "the geometry of a plane");
  const double bytes = wanted.stride * frame.height;
  const bool possible = wanted.stride >= 0 && frame.height >= 0 && bytes <= kSmall;
  require((frame.planes[p] != nullptr) == possible, "a plane is there when its size can be had");
  if (!possible) return;
  require(reinterpret_cast<std::uintptr_t>(frame.planes[p]) % kNoxAlignment == 0, "alignment");
  std::memset(frame.planes[p], 0xA5, static_cast<std::size_t>(bytes));
}

// A size near nothing, in the usual range, near a limit of its type, or any.
std::int32_t any_size(Input *input) {
  switch (input->next() % 4) {
    case 0:
      return input->between(-3, 40);
    case 1:
      return input->between(0, 4000);
    case 2:
      return static_cast<std::int32_t>((std::uint32_t{1} << input->between(0, 31)) +
                                       static_cast<std::uint32_t>(input->between(-2, 2)));
    default:
      return static_cast<std::int32_t>(input->word());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size) {
  Input input(bytes, size);
  while (!input.empty()) {
    const bool any_code = input.flag();
    const std::uint32_t format =
        any_code ? input.word() : static_cast<std::uint32_t>(input.between(0, 0xFFF));
    const std::int32_t width = any_size(&input);
    const std::int32_t height = any_size(&input);
    const char *name = nox_video_format_to_string(format);
    require(name != nullptr && (*name != 0) == has_name(format), "the name of a code");
    const Geometry wanted = expected_geometry(format, width, height);
    if (!decided(wanted, height)) continue;

    NoxVideoFrame frame;
    std::memset(&frame, 0x5A, sizeof(frame));
    nox_video_frame_alloc(&frame, format, width, height);
    require(frame.format == format && frame.width == width && frame.height == height &&
                frame.n_planes == wanted.planes,
            "the head of the record");
    for (int p = 0; p < wanted.planes; ++p) check_plane(frame, p, wanted.plane[p]);
    for (int p = wanted.planes; p < 4; ++p) {
      require(frame.planes[p] == nullptr && frame.strides[p] == 0, "an unused plane");
    }
    nox_video_frame_free_planes(&frame);
    nox_video_frame_free_planes(&frame);
    for (const std::uint8_t *plane : frame.planes) require(plane == nullptr, "released");
  }
  return 0;
}
