// Lit scenes by the words of a command line.
#ifndef SCENES_LIT_WORDS_H_
#define SCENES_LIT_WORDS_H_

#include <string>
#include <vector>

#include "scenes/lit_scene.h"

namespace nox::scenes {

// The pen that words such as "pen=bare", "speed=30", "open=0.8", "exposure=0.35" and "range=full"
// describe; what they leave out is as in LitPen. Throws std::invalid_argument for any other word.
LitPen parse_lit_pen(const std::vector<std::string> &words);

// Where the pen is in each frame, a line for each: its number, whether it is visible, whether it is
// pressed, and x and y as fractions from the top left; commas between.
std::string truth_lines(const LitScene &scene, std::uint32_t frames);

}  // namespace nox::scenes

#endif  // SCENES_LIT_WORDS_H_
