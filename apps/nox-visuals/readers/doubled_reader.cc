#include "nox-visuals/readers/doubled_reader.h"

#include "nox-visuals/readers/doubling.h"

namespace nox::app {
namespace {

constexpr std::int64_t kSamplesAtMost = std::int64_t{4096} * 4096;

}  // namespace

std::vector<Code> DoubledReader::read(const qr::Luma &picture) {
  if (std::int64_t{picture.width} * picture.height > kSamplesAtMost) return {};
  double_picture(picture, &doubled_);
  std::vector<Code> codes =
      reader_.read({doubled_.data(), 2 * picture.width, 2 * picture.width, 2 * picture.height});
  for (Code &code : codes) {
    for (Point &corner : code.corners) corner = {corner.x / 2, corner.y / 2};
    code.reader = "quirc2x";
  }
  return codes;
}

}  // namespace nox::app
