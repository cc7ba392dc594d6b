// OSC packets as lines of text: "/path ,types arguments...", bundles as the lines of their
// messages.
#ifndef NOX_VISUALS_TESTS_OSC_TEXT_H_
#define NOX_VISUALS_TESTS_OSC_TEXT_H_

#include <string>
#include <vector>

namespace nox::app::test {

std::vector<std::string> osc_text(const std::string &packet);

}  // namespace nox::app::test

#endif  // NOX_VISUALS_TESTS_OSC_TEXT_H_
