// ZXing-C++: reads inverted and unevenly lit codes too, and takes longer.
#ifndef NOX_VISUALS_READERS_ZXING_READER_H_
#define NOX_VISUALS_READERS_ZXING_READER_H_

#include <cstdint>
#include <vector>

#include "nox-visuals/readers/reader.h"

namespace nox::app {

class ZxingReader : public Reader {
 public:
  std::vector<Code> read(const qr::Luma &picture) override;

 private:
  std::vector<std::uint8_t> inverted_;  // kept for its memory
};

}  // namespace nox::app

#endif  // NOX_VISUALS_READERS_ZXING_READER_H_
