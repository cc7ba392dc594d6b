// What a look at one thing has found, and what can be done about it.
#ifndef NOX_VISUALS_DOCTOR_FINDING_H_
#define NOX_VISUALS_DOCTOR_FINDING_H_

#include <string>
#include <vector>

namespace nox::app {

enum class Verdict {
  kOk,
  kWarn,  // it works, but not as well as it could
  kFail,  // it does not work
};

struct Finding {
  Verdict verdict = Verdict::kOk;
  std::string subject;  // one word
  std::string text;
  std::string advice;  // a command or a deed; empty: none is needed
};

using Findings = std::vector<Finding>;

// "warn exposure automatic; try: ..."
std::string to_line(const Finding &finding);

// {"type":"finding","verdict":"warn",...}
std::string to_json(const Finding &finding);

// `share` of one, as people say it: "31 %", "0.2 %", "none".
std::string percent(double share);

}  // namespace nox::app

#endif  // NOX_VISUALS_DOCTOR_FINDING_H_
