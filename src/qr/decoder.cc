#include "qr/decoder.h"

#include <quirc.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

namespace nox::qr {
namespace {

// quirc's image has no row padding.
void copy_rows(std::uint8_t *image, const Luma &luma) {
  const std::uint8_t *row = luma.samples;
  for (std::int32_t y = 0; y < luma.height; ++y) {
    std::memcpy(image, row, static_cast<std::size_t>(luma.width));
    image += luma.width;
    row += luma.stride;
  }
}

// What the modules say, into `code`; false when they cannot be read.
bool read_payload(const quirc_code &found, Code *code) {
  quirc_data data;
  const quirc_decode_error_t error = quirc_decode(&found, &data);
  if (error != QUIRC_SUCCESS) {
    code->error = quirc_strerror(error);
    return false;
  }
  code->error = nullptr;
  code->version = data.version;
  code->payload.assign(reinterpret_cast<const char *>(data.payload),
                       static_cast<std::size_t>(data.payload_len));
  return true;
}

// A mirrored code is turned in place.
Code read(quirc_code *found, Mirrored mirrored) {
  Code code;
  std::transform(std::begin(found->corners), std::end(found->corners), code.corners.begin(),
                 [](const quirc_point &corner) {
                   return Corner{corner.x, corner.y};
                 });
  code.size = found->size;
  if (read_payload(*found, &code) || mirrored == Mirrored::kNotRead) return code;
  const char *error = code.error;
  quirc_flip(found);
  if (read_payload(*found, &code)) {
    std::swap(code.corners[1], code.corners[3]);
  } else {
    code.error = error;  // the code as it is seen
  }
  return code;
}

}  // namespace

void Decoder::Destroy::operator()(quirc *decoder) const {
  quirc_destroy(decoder);
}

Decoder::Decoder(Mirrored mirrored) : mirrored_(mirrored), quirc_(quirc_new()) {}
Decoder::~Decoder() = default;

bool Decoder::decode(const Luma &luma) {
  codes_.clear();
  // Only memory can fail here. quirc then keeps an image of the earlier size, into which this
  // picture does not fit.
  if (quirc_resize(quirc_.get(), luma.width, luma.height) < 0) return false;
  copy_rows(quirc_begin(quirc_.get(), nullptr, nullptr), luma);
  quirc_end(quirc_.get());
  const int count = quirc_count(quirc_.get());
  for (int i = 0; i < count; ++i) {
    quirc_code found;
    quirc_extract(quirc_.get(), i, &found);
    codes_.push_back(read(&found, mirrored_));
  }
  return true;
}

}  // namespace nox::qr
