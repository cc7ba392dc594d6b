// quirc on the picture at twice its size: reads codes whose modules are small.
#ifndef NOX_VISUALS_READERS_DOUBLED_READER_H_
#define NOX_VISUALS_READERS_DOUBLED_READER_H_

#include <cstdint>
#include <vector>

#include "nox-visuals/readers/quirc_reader.h"
#include "nox-visuals/readers/reader.h"

namespace nox::app {

class DoubledReader : public Reader {
 public:
  // Reads nothing in pictures of more than 16,777,216 samples: twice the size of those takes more
  // than 200 MB.
  std::vector<Code> read(const qr::Luma &picture) override;

 private:
  std::vector<std::uint8_t> doubled_;  // kept for its memory
  QuircReader reader_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_READERS_DOUBLED_READER_H_
