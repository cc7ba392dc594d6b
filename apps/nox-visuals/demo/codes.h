// What was read in a clip of codes, and what noxqrdec logs of it.
#ifndef NOX_VISUALS_DEMO_CODES_H_
#define NOX_VISUALS_DEMO_CODES_H_

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "nox-visuals/outputs/output.h"

namespace nox::app::demo {

using PayloadCounts = std::map<std::string, int>;  // in how many frames each was read

struct SeenCodes {
  PayloadCounts counts;
  std::vector<Code> first;  // those of the first frame
};

class CodeRecorder final : public Output {
 public:
  // `seen` must outlive it.
  explicit CodeRecorder(SeenCodes *seen) : seen_(seen) {}

  void take(const Observation &observation) override;

 private:
  SeenCodes *seen_;
};

// Plays a video through noxqrdec and reads its log. Throws StreamError.
PayloadCounts logged_payloads(const std::string &clip);

void print(std::ostream &out, const PayloadCounts &counts);

// Draws the first frame of a video with lines around these codes, in a PNG file. Throws
// StreamError.
void draw_codes(const std::string &clip, const std::vector<Code> &codes, const std::string &file);

}  // namespace nox::app::demo

#endif  // NOX_VISUALS_DEMO_CODES_H_
