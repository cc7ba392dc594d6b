#include "nox-visuals/readers/same_code.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace nox::app {
namespace {

using Corners = std::array<Point, 4>;

Point middle(const Corners &corners) {
  Point sum;
  for (const Point &corner : corners) sum = {sum.x + corner.x, sum.y + corner.y};
  return {sum.x / 4, sum.y / 4};
}

// The corners may turn either way: a mirrored code's do.
bool within(const Point &point, const Corners &corners) {
  bool left = false;
  bool right = false;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const Point &from = corners[i];
    const Point &to = corners[(i + 1) % corners.size()];
    const double side = (to.x - from.x) * (point.y - from.y) - (to.y - from.y) * (point.x - from.x);
    left = left || side < 0;
    right = right || side > 0;
  }
  return !(left && right);
}

}  // namespace

bool same_code(const Code &a, const Code &b) {
  return a.bytes == b.bytes &&
         (within(middle(a.corners), b.corners) || within(middle(b.corners), a.corners));
}

void add_new_codes(const std::vector<Code> &more, std::vector<Code> *codes) {
  for (const Code &code : more) {
    const bool known = std::any_of(codes->begin(), codes->end(),
                                   [&code](const Code &other) { return same_code(code, other); });
    if (!known) codes->push_back(code);
  }
}

}  // namespace nox::app
