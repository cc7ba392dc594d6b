// Says a code that stays in view once.
#ifndef NOX_VISUALS_STEPS_UNIQUE_CODES_H_
#define NOX_VISUALS_STEPS_UNIQUE_CODES_H_

#include <cstddef>
#include <cstdint>
#include <list>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "nox-visuals/steps/step.h"

namespace nox::app {

// So many payloads are remembered: 30 MB of the longest ones.
inline constexpr std::size_t kRememberedCodes = 10'000;

// Codes with the same bytes are one code here, wherever they are in the picture. Of more payloads
// than are remembered, those that have not been seen for the longest are forgotten, and said again.
class UniqueCodes : public Step {
 public:
  // A code that has not been seen for `seconds` is said again; without them, never.
  explicit UniqueCodes(std::optional<double> seconds);

  void take(const Observation &in, std::vector<Observation> *out) override;

 private:
  struct Seen {
    std::string bytes;
    std::int64_t last_ns;
  };

  bool is_new(const Code &code);
  void forget_oldest(std::int64_t now_ns);

  std::optional<std::int64_t> pause_ns_;
  std::list<Seen> seen_;  // the one that was seen last is the first
  std::unordered_map<std::string_view, std::list<Seen>::iterator> by_bytes_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STEPS_UNIQUE_CODES_H_
