// When the edges of the cards in the edges' scene are drawn.
#ifndef NOX_VISUALS_DEMO_WATCHED_EDGES_H_
#define NOX_VISUALS_DEMO_WATCHED_EDGES_H_

#include <iosfwd>
#include <vector>

#include "nox-visuals/demo/drawing.h"

namespace nox::app::demo {

// An upright border between two areas, as fractions of the picture, and when it was drawn at full
// strength.
struct WatchedEdge {
  const char *name;
  float x;
  float top;
  float bottom;
  int expected_first;
  int expected_last;
  int first = 0;
  int last = 0;
};

// Of the two cards, when the scene ends with this frame: an edge is drawn from its 100th frame on
// and for 499 frames after its last one.
std::vector<WatchedEdge> card_edges(int last_frame);

// Looks at a frame, counted from 1.
void watch(std::vector<WatchedEdge> *edges, int frame, const Picture &input,
           const Picture &drawing);

// Prints when each was drawn; whether all were when they should be.
bool report(std::ostream &out, const std::vector<WatchedEdge> &edges);

}  // namespace nox::app::demo

#endif  // NOX_VISUALS_DEMO_WATCHED_EDGES_H_
