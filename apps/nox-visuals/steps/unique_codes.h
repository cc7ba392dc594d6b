// Says a code that stays in view once.
#ifndef NOX_VISUALS_STEPS_UNIQUE_CODES_H_
#define NOX_VISUALS_STEPS_UNIQUE_CODES_H_

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "nox-visuals/steps/step.h"

namespace nox::app {

// Codes with the same bytes are one code here, wherever they are in the picture.
class UniqueCodes : public Step {
 public:
  // A code that has not been seen for `seconds` is said again; without them, never.
  explicit UniqueCodes(std::optional<double> seconds);

  void take(const Observation &in, std::vector<Observation> *out) override;

 private:
  bool is_new(const Code &code);
  void forget_old(std::int64_t now_ns);

  std::optional<std::int64_t> pause_ns_;
  std::unordered_map<std::string, std::int64_t> seen_ns_;  // when each payload was seen last
  std::size_t forget_at_;                                  // the size at which to look for old ones
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STEPS_UNIQUE_CODES_H_
