// quirc: fast enough for every frame of a live stream. Reads mirrored codes too.
#ifndef NOX_VISUALS_READERS_QUIRC_READER_H_
#define NOX_VISUALS_READERS_QUIRC_READER_H_

#include <vector>

#include "nox-visuals/readers/reader.h"

namespace nox::app {

class QuircReader : public Reader {
 public:
  std::vector<Code> read(const qr::Luma &picture) override;

 private:
  qr::Decoder decoder_{qr::Mirrored::kRead};
};

}  // namespace nox::app

#endif  // NOX_VISUALS_READERS_QUIRC_READER_H_
