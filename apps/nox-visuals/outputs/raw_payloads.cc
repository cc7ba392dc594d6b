#include "nox-visuals/outputs/raw_payloads.h"

namespace nox::app {

std::string RawPayloads::text_of(const Observation &observation) const {
  const auto *code = std::get_if<Code>(&observation);
  return code == nullptr ? "" : code->bytes + "\n";
}

}  // namespace nox::app
