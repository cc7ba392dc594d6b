#include "nox-visuals/readers/readers.h"

#include "nox-visuals/readers/doubled_reader.h"
#include "nox-visuals/readers/quirc_reader.h"
#include "nox-visuals/readers/same_code.h"
#if NOX_HAVE_ZXING
#include "nox-visuals/readers/zxing_reader.h"
#endif

namespace nox::app {

std::vector<std::string> reader_words() {
  if (!built_with_zxing()) return {"all", "quirc", "quirc2x"};
  return {"all", "quirc", "zxing", "quirc2x"};
}

bool built_with_zxing() {
  return NOX_HAVE_ZXING != 0;
}

Readers make_readers(const std::string &word) {
  Readers readers;
  const bool all = word == "all";
  if (all || word == "quirc") readers.fast = std::make_unique<QuircReader>();
#if NOX_HAVE_ZXING
  if (all || word == "zxing") readers.slow.push_back(std::make_unique<ZxingReader>());
#endif
  if (all || word == "quirc2x") readers.slow.push_back(std::make_unique<DoubledReader>());
  return readers;
}

std::vector<Code> read_with_all(const Readers &readers, const qr::Luma &picture) {
  std::vector<Code> codes;
  if (readers.fast != nullptr) add_new_codes(readers.fast->read(picture), &codes);
  for (const auto &reader : readers.slow) add_new_codes(reader->read(picture), &codes);
  return codes;
}

}  // namespace nox::app
