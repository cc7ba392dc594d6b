// The pictures that cost noxpentracker most of all that a search has found.
#ifndef PENTRACKER_SLOWEST_FRAMES_H_
#define PENTRACKER_SLOWEST_FRAMES_H_

#include "pentracker/dotted_picture.h"

namespace nox::test {

// Rows as slowest_frames_search prints them.
inline constexpr DottedPicture kSlowestFrames[] = {
    {2, 9, 10, 4, 4, 0, 6, 0, 0, 0, 4, 5, 3, 0, 9, -3, 793639756U},
    {2, 14, 8, 9, 3, 8, 0, 0, 0, 0, -4, -5, 3, 2, 1, -3, 1360864800U},
    {2, 13, 8, 6, 3, 7, 0, 0, 0, 0, 6, -1, 2, 1, 2, 3, 1435745229U},
};

}  // namespace nox::test

#endif  // PENTRACKER_SLOWEST_FRAMES_H_
