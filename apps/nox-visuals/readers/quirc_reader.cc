#include "nox-visuals/readers/quirc_reader.h"

#include <algorithm>

namespace nox::app {

std::vector<Code> QuircReader::read(const qr::Luma &picture) {
  std::vector<Code> codes;
  decoder_.decode(picture);
  for (const qr::Code &found : decoder_.codes()) {
    if (found.error != nullptr) continue;
    Code code;
    code.bytes = found.payload;
    std::transform(found.corners.begin(), found.corners.end(), code.corners.begin(),
                   [](const qr::Corner &corner) {
                     return Point{static_cast<double>(corner.x), static_cast<double>(corner.y)};
                   });
    code.size = found.size;
    code.reader = "quirc";
    codes.push_back(code);
  }
  return codes;
}

}  // namespace nox::app
