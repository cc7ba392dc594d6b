#include "nox-visuals/readers/zxing_reader.h"

// Version 1 of the library speaks std::wstring unless told otherwise.
#define ZX_USE_UTF8

#include <ZXing/ReadBarcode.h>
#if __has_include(<ZXing/Version.h>)
#include <ZXing/Version.h>
#else
#include <ZXing/ZXVersion.h>
#endif

#include <algorithm>
#include <cstddef>
#include <string>

#if ZXING_VERSION_MAJOR < 2
#include "nox-visuals/readers/qr_size.h"
#endif

namespace nox::app {
namespace {

#if ZXING_VERSION_MAJOR < 2

using ZXing::Result;

std::vector<Result> read_upright(const ZXing::ImageView &view) {
  return ZXing::ReadBarcodes(view, ZXing::DecodeHints()
                                       .setFormats(ZXing::BarcodeFormat::QRCode)
                                       .setTryHarder(true)
                                       .setTryRotate(true));
}

// This version looks for dark codes on light ground only: it is given the negative as well.
std::vector<Result> read_all(const qr::Luma &picture, std::vector<std::uint8_t> *inverted) {
  const auto width = static_cast<std::size_t>(picture.width);
  inverted->resize(width * static_cast<std::size_t>(picture.height));
  for (std::int32_t y = 0; y < picture.height; ++y) {
    const std::uint8_t *row = picture.samples + y * picture.stride;
    std::transform(row, row + width, inverted->data() + static_cast<std::size_t>(y) * width,
                   [](std::uint8_t sample) { return static_cast<std::uint8_t>(255 - sample); });
  }
  std::vector<Result> results =
      read_upright({picture.samples, picture.width, picture.height, ZXing::ImageFormat::Lum,
                    static_cast<int>(picture.stride)});
  for (Result &result :
       read_upright({inverted->data(), picture.width, picture.height, ZXing::ImageFormat::Lum})) {
    results.push_back(std::move(result));
  }
  return results;
}

// It does not tell the version either, but the codewords, of which each version and level of error
// correction has a number of its own.
int size_of(const Result &result) {
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
  const int codewords = static_cast<int>(result.rawBytes().size());
#pragma GCC diagnostic pop
  return qr_size(result.ecLevel(), codewords);
}

#else

using ZXing::Result;

std::vector<Result> read_all(const qr::Luma &picture, std::vector<std::uint8_t> * /*inverted*/) {
  const ZXing::ImageView view(picture.samples, picture.width, picture.height,
                              ZXing::ImageFormat::Lum, static_cast<int>(picture.stride));
  return ZXing::ReadBarcodes(view, ZXing::ReaderOptions()
                                       .setFormats(ZXing::BarcodeFormat::QRCode)
                                       .setTryHarder(true)
                                       .setTryRotate(true)
                                       .setTryInvert(true));
}

int size_of(const Result &result) {
  return 17 + 4 * std::stoi(result.version());
}

#endif

}  // namespace

std::vector<Code> ZxingReader::read(const qr::Luma &picture) {
  std::vector<Code> codes;
  for (const Result &result : read_all(picture, &inverted_)) {
    if (!result.isValid()) continue;
    Code code;
    code.bytes.assign(result.bytes().begin(), result.bytes().end());
    std::transform(result.position().begin(), result.position().end(), code.corners.begin(),
                   [](const ZXing::PointI &corner) {
                     return Point{static_cast<double>(corner.x), static_cast<double>(corner.y)};
                   });
    code.size = size_of(result);
    code.reader = "zxing";
    codes.push_back(code);
  }
  return codes;
}

}  // namespace nox::app
