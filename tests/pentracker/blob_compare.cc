#include "pentracker/blob_compare.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>

namespace nox::test {

namespace {

template <typename T>
void compare(const char *field, T actual, T expected, std::string *differences) {
  if (actual == expected) return;
  *differences +=
      std::string(" ") + field + " " + std::to_string(actual) + " for " + std::to_string(expected);
}

void compare_bits(const char *field, float actual, float expected, std::string *differences) {
  if (std::bit_cast<std::uint32_t>(actual) != std::bit_cast<std::uint32_t>(expected)) {
    *differences += std::string(" ") + field + " " + std::to_string(actual) + " for " +
                    std::to_string(expected);
  }
}

template <typename AnyBlob>
std::int32_t index_of(const AnyBlob *blob) {
  return blob == nullptr ? -1 : blob->index;
}

void compare_shape(const Blob &a, const PlainBlob &b, std::string *out) {
  compare("index", a.index, b.index, out);
  compare("mask_width", a.mask_width, b.mask_width, out);
  compare("mask_height", a.mask_height, b.mask_height, out);
  compare("pixel_count", a.pixel_count, b.pixel_count, out);
  compare("min_x", a.min_x, b.min_x, out);
  compare("min_y", a.min_y, b.min_y, out);
  compare("max_x", a.max_x, b.max_x, out);
  compare("max_y", a.max_y, b.max_y, out);
  compare("width", a.width, b.width, out);
  compare("height", a.height, b.height, out);
  compare_bits("centre_x", a.centre_x, b.centre_x, out);
  compare_bits("centre_y", a.centre_y, b.centre_y, out);
  if (a.pixel_count != b.pixel_count) return;
  for (std::size_t i = 0; i < b.pixels.size(); ++i) {
    compare("pixel x", a.pixels[i].x, b.pixels[i].x, out);
    compare("pixel y", a.pixels[i].y, b.pixels[i].y, out);
  }
}

void compare_links(const Blob &a, const PlainBlob &b, std::string *out) {
  compare("previous", index_of(a.previous), index_of(b.previous), out);
  compare("successor", index_of(a.successor), index_of(b.successor), out);
  compare_bits("match_score", a.match_score, b.match_score, out);
  compare_bits("successor_score", a.successor_score, b.successor_score, out);
  compare_bits("step_length", a.step_length, b.step_length, out);
  compare_bits("step_change", a.step_change, b.step_change, out);
  compare_bits("predicted_x", a.predicted_x, b.predicted_x, out);
  compare_bits("predicted_y", a.predicted_y, b.predicted_y, out);
  // The blob of the frame before has got its link to the future: compare that, too.
  if (a.previous != nullptr && b.previous != nullptr) {
    compare("previous->successor", index_of(a.previous->successor), index_of(b.previous->successor),
            out);
    compare_bits("previous->successor_score", a.previous->successor_score,
                 b.previous->successor_score, out);
  }
  compare_bits("history score", blob_history_score(&a), plain_history_score(&b), out);
}

}  // namespace

std::string blob_differences(const BlobList *list, const PlainBlobList &plain) {
  const PlainFrame &expected = plain.current();
  if (blob_list_count(list) != static_cast<std::int32_t>(expected.size())) {
    return std::to_string(blob_list_count(list)) + " blobs for " + std::to_string(expected.size());
  }
  for (std::int32_t i = 0; i < blob_list_count(list); ++i) {
    std::string differences;
    const PlainBlob &wanted = *expected[static_cast<std::size_t>(i)];
    compare_shape(*blob_list_get(list, i), wanted, &differences);
    compare_links(*blob_list_get(list, i), wanted, &differences);
    if (!differences.empty()) {
      return "blob " + std::to_string(i) + ":" + differences.substr(0, 2000);
    }
  }
  return "";
}

}  // namespace nox::test
