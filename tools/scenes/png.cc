#include "scenes/png.h"

#include <png.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <vector>

namespace nox::scenes {
namespace {

std::uint8_t to_byte(float value) {
  return static_cast<std::uint8_t>(std::clamp(value, 0.0F, 255.0F) + 0.5F);
}

}  // namespace

void write_png(const Canvas &canvas, const std::string &path) {
  std::vector<std::uint8_t> bytes;
  bytes.reserve(3 * canvas.pixels().size());
  for (const Color &pixel : canvas.pixels()) {
    bytes.insert(bytes.end(), {to_byte(pixel.r), to_byte(pixel.g), to_byte(pixel.b)});
  }
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  image.width = static_cast<png_uint_32>(canvas.width());
  image.height = static_cast<png_uint_32>(canvas.height());
  image.format = PNG_FORMAT_RGB;
  if (png_image_write_to_file(&image, path.c_str(), 0, bytes.data(), 0, nullptr) == 0) {
    throw std::runtime_error(path + ": " + image.message);
  }
}

}  // namespace nox::scenes
