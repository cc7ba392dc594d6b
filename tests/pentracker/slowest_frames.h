// The pictures that cost noxpentracker most of all that a search has found.
#ifndef PENTRACKER_SLOWEST_FRAMES_H_
#define PENTRACKER_SLOWEST_FRAMES_H_

#include "pentracker/dotted_picture.h"

namespace nox::test {

// Rows as slowest_frames_search prints them.
inline constexpr DottedPicture kSlowestFrames[] = {
    {2, 9, 9, 3, 3, 7, 0, 1, 2, 1, -5, 3, 2, 8, 2, 4, 876031725U},
    {2, 11, 4, 4, 2, 0, 30, 8, 0, 2, -4, -1, 3, 8, 7, -4, 1640359906U},
    {1, 6, 4, 1, 1, 7, 2, 0, 1, 1, -1, 6, 3, 8, 2, -1, 1116686852U},
    {2, 10, 9, 4, 4, 11, 4, 0, 4, 0, -5, 5, 3, 15, 5, -4, 3908983807U},
    {2, 12, 9, 4, 4, 11, 0, 0, 4, 0, 5, 1, 3, 10, 1, -3, 1740649930U},
    {2, 12, 5, 4, 3, 11, 20, 4, 3, 0, -2, 6, 3, 13, 6, -2, 2026342762U},
    {2, 3, 10, 3, 3, 8, 26, 33, 1, 1, -1, -1, 3, 18, 4, -1, 2220751856U},
    {2, 9, 10, 3, 2, 5, 7, 0, 2, 3, -6, -6, 2, 3, 9, -1, 1542236915U},
    {2, 7, 11, 3, 3, 7, 2, 4, 3, 1, 1, 4, 3, 21, 8, 1, 959235468U},
    {1, 2, 9, 1, 1, 7, 15, 10, 4, 0, -2, 5, 2, 3, 18, 3, 2860155600U},
};

}  // namespace nox::test

#endif  // PENTRACKER_SLOWEST_FRAMES_H_
