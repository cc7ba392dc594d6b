#include "nox-visuals/steps/strokes.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using nox::app::Code;
using nox::app::Loss;
using nox::app::Observation;
using nox::app::Pen;
using nox::app::StrokesStep;

Pen pen(bool pressed) {
  return {{}, {}, pressed, {}, 0};
}

// The strokes of the pens among these.
std::vector<std::uint64_t> strokes(const std::vector<Observation> &in) {
  StrokesStep step;
  std::vector<Observation> out;
  for (const Observation &it : in) step.take(it, &out);
  EXPECT_EQ(out.size(), in.size());
  std::vector<std::uint64_t> numbers;
  for (const Observation &it : out) {
    if (const Pen *one = std::get_if<Pen>(&it)) numbers.push_back(one->stroke);
  }
  return numbers;
}

using Numbers = std::vector<std::uint64_t>;

TEST(Strokes, AHoveringPenHasThatOfTheNextPress) {
  EXPECT_EQ(strokes({pen(false), pen(true), pen(true), pen(false), pen(false), pen(true)}),
            (Numbers{1, 1, 1, 2, 2, 2}));
}

TEST(Strokes, ALossEndsAStroke) {
  EXPECT_EQ(strokes({pen(true), Loss{}, pen(true), Loss{}, Loss{}, pen(false)}),
            (Numbers{1, 2, 3}));
}

TEST(Strokes, CodesChangeNothing) {
  EXPECT_EQ(strokes({pen(true), Code{}, pen(true), pen(false), Code{}, pen(true)}),
            (Numbers{1, 1, 2, 2}));
}

Pen recovered() {
  Pen it = pen(true);
  it.recovered = true;
  return it;
}

TEST(Strokes, ARecoveredPenGoesOnWithItsStroke) {
  EXPECT_EQ(strokes({pen(true), recovered(), Loss{}, recovered(), pen(false), pen(true)}),
            (Numbers{1, 1, 1, 2, 2}));
  EXPECT_EQ(strokes({pen(true), Loss{}, recovered(), Loss{}, pen(true)}), (Numbers{1, 1, 2}));
}

TEST(Strokes, APenThatIsPressedWhileItIsLostBeginsOne) {
  EXPECT_EQ(strokes({pen(true), pen(false), Loss{}, recovered(), recovered()}),
            (Numbers{1, 2, 2, 2}));
}

}  // namespace
