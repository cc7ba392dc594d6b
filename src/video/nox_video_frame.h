// The picture record of the cores: up to four 8-bit planes with a stride and a size each.
#ifndef VIDEO_NOX_VIDEO_FRAME_H_
#define VIDEO_NOX_VIDEO_FRAME_H_

#include <cstdint>

// Format codes are a small bit field. The four bits below tell the family, tested in this order:
// gray, planar, packed. In the gray and planar families kNoxFormatStudioRange and kNoxFormatBt709
// tell the colorimetry; in the packed family the low three bits give the byte order.
inline constexpr std::uint32_t kNoxFormatAlpha = 0x80;    // planar only: a fourth, full-size plane
inline constexpr std::uint32_t kNoxFormatPlanar = 0x100;  // Y, U, V; chroma halved both ways
inline constexpr std::uint32_t kNoxFormatPacked = 0x200;
inline constexpr std::uint32_t kNoxFormatGray = 0x400;

inline constexpr std::uint32_t kNoxFormatStudioRange = 0x1;  // 16 to 235; unset: 0 to 255
inline constexpr std::uint32_t kNoxFormatBt709 = 0x2;        // unset: BT.601

inline constexpr std::uint32_t kNoxFormatI420 = kNoxFormatPlanar;
inline constexpr std::uint32_t kNoxFormatA420 = kNoxFormatPlanar | kNoxFormatAlpha;
inline constexpr std::uint32_t kNoxFormatRgb = 0x200;
inline constexpr std::uint32_t kNoxFormatRgbx = 0x201;
inline constexpr std::uint32_t kNoxFormatRgba = 0x202;
inline constexpr std::uint32_t kNoxFormatBgr = 0x203;
inline constexpr std::uint32_t kNoxFormatBgrx = 0x204;
inline constexpr std::uint32_t kNoxFormatBgra = 0x205;
inline constexpr std::uint32_t kNoxFormatCairo = 0xA05;  // packed, four bytes a pixel

// A plain value: copying it copies pointers, not pixels. Who owns the planes is said by whoever
// fills the record: nox_video_frame_alloc gives it planes of its own, everyone else lets it point
// into theirs.
//
// A plane owns strides[i] x plane_heights[i] bytes, the padding of its last row included. The cores
// may read and write all of these bytes, padding too, and touch no other. Whoever has less memory
// than that, such as a buffer that ends with its last sample, makes up for it before a core sees
// the frame. Rows may run upwards (a negative stride; a row then owns as many bytes as its
// magnitude), and a plane owns its samples also where a stride is less than a row of them.
struct NoxVideoFrame {
  std::uint32_t format;
  std::int32_t width;   // of the picture, in pixels
  std::int32_t height;  // in rows
  std::int32_t n_planes;
  std::uint8_t *planes[4];        // first row of each plane; unused entries are null
  std::int32_t strides[4];        // bytes from one row to the next
  std::int32_t plane_widths[4];   // in samples
  std::int32_t plane_heights[4];  // in rows
};

// Fills `frame` for a picture of `width` by `height` pixels and gives it planes of its own, aligned
// to kNoxAlignment, rows packed without padding, not cleared. Chroma sizes are halved with
// truncation. Every plane's block has room for `height` rows, also where the plane has only half as
// many: that sizing is deliberate. A plane that cannot be had (no memory, or a negative size) is
// null. The planes that `frame` had before are not released.
void nox_video_frame_alloc(NoxVideoFrame *frame, std::uint32_t format, std::int32_t width,
                           std::int32_t height);

// Releases the planes that nox_video_frame_alloc made and sets their pointers to null; a second
// call does nothing. The other fields stay.
void nox_video_frame_free_planes(NoxVideoFrame *frame);

// The name of a format code, for diagnostics, such as "I420_BT601_0_255"; "" for an unknown code.
// The string is constant and never null.
const char *nox_video_format_to_string(std::uint32_t format);

#endif  // VIDEO_NOX_VIDEO_FRAME_H_
