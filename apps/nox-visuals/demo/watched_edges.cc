#include "nox-visuals/demo/watched_edges.h"

#include <algorithm>
#include <cstdint>
#include <ostream>

#include "scenes/edge_scene.h"

namespace nox::app::demo {

using scenes::EdgeScene;

namespace {

// Whether at least half of the rows along the edge show the input itself near it.
bool is_drawn(const WatchedEdge &edge, const Picture &input, const Picture &drawing) {
  const int x = static_cast<int>(edge.x * static_cast<float>(input.width()));
  const int top = static_cast<int>(edge.top * static_cast<float>(input.height()));
  const int bottom = static_cast<int>(edge.bottom * static_cast<float>(input.height()));
  int rows = 0;
  for (int y = top; y < bottom; ++y) {
    bool shown = false;
    for (int i = x - 3; i <= x + 3; ++i) shown |= drawing.luma(i, y) == input.luma(i, y);
    rows += shown ? 1 : 0;
  }
  return 2 * rows >= bottom - top;
}

}  // namespace

std::vector<WatchedEdge> card_edges(int last_frame) {
  const int light_last = static_cast<int>(EdgeScene::kCardGoes) - 1;
  const int dark_first = static_cast<int>(EdgeScene::kCardComes);
  return {{"light card", 0.30F, 0.60F, 0.72F, 100, std::min(light_last + 499, last_frame)},
          {"dark card", 0.60F, 0.62F, 0.74F, dark_first + 99, last_frame}};
}

void watch(std::vector<WatchedEdge> *edges, int frame, const Picture &input,
           const Picture &drawing) {
  for (WatchedEdge &edge : *edges) {
    if (!is_drawn(edge, input, drawing)) continue;
    if (edge.first == 0) edge.first = frame;
    edge.last = frame;
  }
}

bool report(std::ostream &out, const std::vector<WatchedEdge> &edges) {
  bool right = true;
  for (const WatchedEdge &edge : edges) {
    const bool as_expected = edge.first == edge.expected_first && edge.last == edge.expected_last;
    out << "  edges of the " << edge.name << ": drawn in frames " << edge.first << " to "
        << edge.last << (as_expected ? "" : ", which is wrong") << '\n';
    right &= as_expected;
  }
  return right;
}

}  // namespace nox::app::demo
