// noxpentracker under a stream of dotted pictures, timed frame by frame.
#ifndef NOXVISUALS_DOTTED_STREAM_H_
#define NOXVISUALS_DOTTED_STREAM_H_

#include <vector>

#include "pentracker/dotted_picture.h"
#include "support/harness.h"

namespace nox::bench {

// CPU time in milliseconds of the thread that pushes them, for each of the first `frames` pictures
// of the sequence through an element of their own.
std::vector<double> time_dots(const test::DottedPicture &dots, int frames);

}  // namespace nox::bench

#endif  // NOXVISUALS_DOTTED_STREAM_H_
