#include "masks/morphology_plan.h"

#include <algorithm>
#include <bit>

namespace nox::masks {
namespace {

std::size_t term_index(ElementPlan *plan, RunTerm wanted) {
  const auto found = std::find_if(plan->terms.begin(), plan->terms.end(), [=](const RunTerm &t) {
    return t.level == wanted.level && t.shift == wanted.shift;
  });
  if (found == plan->terms.end()) {
    plan->terms.push_back(wanted);
    plan->highest_level = std::max(plan->highest_level, wanted.level);
    return plan->terms.size() - 1;
  }
  return static_cast<std::size_t>(found - plan->terms.begin());
}

// A run is the longest power of two that fits, at its beginning and, when that is shorter, at its
// end.
void add_run(ElementPlan *plan, std::int32_t first, std::int32_t length) {
  const std::uint32_t whole = std::bit_floor(static_cast<std::uint32_t>(length));
  const std::int32_t level = std::countr_zero(whole);
  const std::int32_t rest = length - static_cast<std::int32_t>(whole);
  plan->term_indices.push_back(term_index(plan, {level, first}));
  if (rest != 0) plan->term_indices.push_back(term_index(plan, {level, first + rest}));
}

RowPattern add_pattern(ElementPlan *plan, std::uint32_t row) {
  const std::size_t first = plan->term_indices.size();
  while (row != 0) {
    const int start = std::countr_zero(row);
    const int length = std::countr_one(row >> start);
    add_run(plan, start, length);
    row &= ~(((std::uint32_t{1} << length) - 1) << start);
  }
  while ((plan->term_indices.size() - first) % kTermGroup != 0) {
    plan->term_indices.push_back(plan->term_indices.back());
  }
  return {first, plan->term_indices.size() - first};
}

}  // namespace

ElementPlan plan_element(const std::vector<std::uint32_t> &rows, std::int32_t anchor_y) {
  ElementPlan plan;
  std::vector<std::uint32_t> seen;
  for (std::size_t r = 0; r < rows.size(); ++r) {
    if (rows[r] == 0) continue;
    const auto found = std::find(seen.begin(), seen.end(), rows[r]);
    const auto pattern = static_cast<std::size_t>(found - seen.begin());
    if (found == seen.end()) {
      seen.push_back(rows[r]);
      plan.patterns.push_back(add_pattern(&plan, rows[r]));
    }
    plan.rows.push_back({static_cast<std::int32_t>(r) - anchor_y, pattern});
  }
  return plan;
}

}  // namespace nox::masks
