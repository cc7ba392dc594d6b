// Taking an element of any shape apart into few shifts.
#ifndef MASKS_MORPHOLOGY_PLAN_H_
#define MASKS_MORPHOLOGY_PLAN_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace nox::masks {

// Widest element, in columns; a run of 24 needs copies of runs of 16, which is level 4.
inline constexpr std::int32_t kMaxColumns = 24;
inline constexpr std::int32_t kMaxLevel = 4;
// Different terms that 24 columns can ask for: runs of 1, 2, 4, 8 and 16 wherever they fit.
inline constexpr std::size_t kMaxTerms = 24 + 23 + 21 + 17 + 9;

// Joining a source row's run of 2^level pixels at every place, moved by `shift` columns, gives a
// run of an element row, or its first or last part.
struct RunTerm {
  std::int32_t level;
  std::int32_t shift;
};

// Different rows of the element, each a list of terms: count indices from `first` on. The count is
// a multiple of kTermGroup, filled up with the last term: joining a term twice changes nothing, and
// the kernel's loop has fewer turns that are hard to foretell.
inline constexpr std::size_t kTermGroup = 4;
struct RowPattern {
  std::size_t first;
  std::size_t count;
};

struct ElementRow {
  std::int32_t offset;  // rows below the pixel that is computed: row - anchor
  std::size_t pattern;
};

// Empty rows of the element are not in the plan.
struct ElementPlan {
  std::int32_t highest_level = 0;
  std::vector<RunTerm> terms;             // all different
  std::vector<std::size_t> term_indices;  // of all patterns, one after the other
  std::vector<RowPattern> patterns;       // all different
  std::vector<ElementRow> rows;           // from top to bottom
};

// Plans for the rows, bit c of a row being column c; row anchor_y is the pixel's own.
ElementPlan plan_element(const std::vector<std::uint32_t> &rows, std::int32_t anchor_y);

}  // namespace nox::masks

#endif  // MASKS_MORPHOLOGY_PLAN_H_
