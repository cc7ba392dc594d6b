// Pictures for people to look at.
#ifndef SCENES_PNG_H_
#define SCENES_PNG_H_

#include <string>

#include "scenes/canvas.h"

namespace nox::scenes {

// Writes the canvas as 8-bit RGB. Throws std::runtime_error when the file cannot be written.
void write_png(const Canvas &canvas, const std::string &path);

}  // namespace nox::scenes

#endif  // SCENES_PNG_H_
