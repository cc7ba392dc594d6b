#include "pentracker/diagnostics.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <vector>

#include "pentracker/components.h"

namespace {

constexpr int kGroup = 8;  // bits
constexpr std::int32_t kPixelsOfLine = 32;

// The one place that writes.
__attribute__((format(printf, 1, 2))) void print(const char *format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::vprintf(format, arguments);
  va_end(arguments);
}

// Bits with "| " between groups, then the end of the line.
void print_bits(std::uint32_t word, int bits) {
  for (int i = 0; i < bits; ++i) {
    print("%d ", static_cast<int>(word >> i & 1U));
    if (i % kGroup == kGroup - 1 && i + 1 < bits) print("| ");
  }
  print("\n");
}

}  // namespace

void dump_mask(const BitMask *mask) {
  print("\n  uint8_t mask[] = {\n     ");
  for (std::int32_t y = 0; y < mask->height; ++y) {
    print(" /* row %3d */\n     ", y);
    for (std::int32_t x = 0; x < mask->width; ++x) {
      print(" %d,", bitmask_get(mask, x, y));
      if ((x + 1) % kPixelsOfLine == 0) print("\n     ");
    }
  }
  print("  };\n\n");
}

void dump_components(const BlobList *list) {
  const nox::pentracker::Components &labelled = *list->components;
  std::vector<BlobPixel> pixels(labelled.pixel_count());
  labelled.write_pixels(pixels.data());
  const BlobPixel *pixel = pixels.data();
  for (const auto &component : labelled.components()) {
    print("\nBlob %d: ", component.id);
    for (std::int32_t i = 0; i < component.pixel_count; ++i, ++pixel) {
      print("%dx%d, ", pixel->x, pixel->y);
    }
    print("\n");
  }
}

void dump_blobs(const BlobList *list) {
  for (std::int32_t i = 0; i < blob_list_count(list); ++i) {
    const Blob *blob = blob_list_get(list, i);
    print("\nBlob Data %d:\n", blob->index);
    print("  %fx%f\n", static_cast<double>(blob->centre_x), static_cast<double>(blob->centre_y));
    print("  wxh: %dx%d\n", blob->width, blob->height);
    print("  num_pixels: %d\n", blob->pixel_count);
    print("\n");
  }
}

void dump_bits16(std::uint16_t word) {
  print_bits(word, 16);
}

void dump_bits32(std::uint32_t word) {
  print_bits(word, 32);
}

// Unlike the shorter words, this one has no blanks between bits and its bar before each group.
void dump_bits128(const void *word) {
  std::uint8_t bytes[16];
  std::memcpy(bytes, word, sizeof(bytes));
  for (std::size_t byte = 0; byte < sizeof(bytes); ++byte) {
    if (byte != 0) print(" | ");
    for (int bit = 0; bit < kGroup; ++bit) print("%d", bytes[byte] >> bit & 1);
  }
  print("\n");
}
