// What reads the codes in a gray picture: one class a library, one file a class.
#ifndef NOX_VISUALS_READERS_READER_H_
#define NOX_VISUALS_READERS_READER_H_

#include <vector>

#include "nox-visuals/observation.h"
#include "qr/decoder.h"

namespace nox::app {

class Reader {
 public:
  Reader() = default;
  virtual ~Reader() = default;
  Reader(const Reader &) = delete;
  Reader &operator=(const Reader &) = delete;

  // The codes that it can read, their moments left empty. Used by one thread at a time.
  virtual std::vector<Code> read(const qr::Luma &picture) = 0;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_READERS_READER_H_
