// Searches for the pictures that cost noxpentracker most: at random first, then by small changes of
// the slowest ones found. Prints what it found, slowest first, as rows of a table.
// usage: slowest_frames_search TRIES SEED
#include <gst/gst.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <vector>

#include "noxvisuals/dotted_stream.h"
#include "support/random.h"

namespace {

using nox::test::DottedPicture;
using nox::test::kDottedRanges;
using nox::test::Random;

// The first frame has nothing to be linked to, and those after the third tell nothing new.
constexpr int kFrames = 5;
constexpr std::size_t kKept = 10;
constexpr int kTriesBetweenChecks = 2000;
// Of all tries, those at random.
constexpr double kRandomShare = 0.6;

struct Find {
  DottedPicture dots;
  double milliseconds;
};

// The slowest frame but the first one; what disturbs a run is not in both of two.
double cost(const DottedPicture &dots, int runs) {
  std::vector<double> least;
  for (int run = 0; run < runs; ++run) {
    const std::vector<double> times = nox::bench::time_dots(dots, kFrames);
    if (least.empty()) least = times;
    for (std::size_t i = 0; i < times.size(); ++i) least[i] = std::min(least[i], times[i]);
  }
  return *std::max_element(least.begin() + 1, least.end());
}

DottedPicture random_dots(Random *random) {
  DottedPicture dots{};
  for (const auto &range : kDottedRanges)
    dots.*range.member = random->between(range.low, range.high);
  // What is most regular costs most: a chance for none of each disturbance.
  for (const auto member :
       {&DottedPicture::left_out, &DottedPicture::churn, &DottedPicture::jitter,
        &DottedPicture::growth, &DottedPicture::region_pitch, &DottedPicture::stagger}) {
    if (random->chance(0.6)) dots.*member = 0;
  }
  dots.seed = static_cast<std::uint32_t>(random->bits());
  return dots;
}

DottedPicture changed(DottedPicture dots, Random *random) {
  const int changes = random->between(1, 3);
  for (int i = 0; i < changes; ++i) {
    const auto &range = kDottedRanges[static_cast<std::size_t>(
        random->between(0, static_cast<std::int32_t>(kDottedRanges.size()) - 1))];
    std::int32_t &value = dots.*range.member;
    value = random->chance(0.7) ? value + (random->chance(0.5) ? 1 : -1)
                                : random->between(range.low, range.high);
    value = std::clamp(value, range.low, range.high);
  }
  if (random->chance(0.2)) dots.seed = static_cast<std::uint32_t>(random->bits());
  return dots;
}

class Search {
 public:
  explicit Search(std::uint64_t seed) : random_(seed) {}

  void run(int tries) {
    for (int i = 0; i < tries; ++i) {
      const bool at_random = i < static_cast<int>(kRandomShare * tries) || finds_.empty();
      if (at_random) {
        consider(random_dots(&random_), std::nullopt);
      } else {
        const auto parent = static_cast<std::size_t>(
            random_.between(0, static_cast<std::int32_t>(finds_.size()) - 1));
        consider(changed(finds_[parent].dots, &random_), parent);
      }
      if ((i + 1) % kTriesBetweenChecks == 0) {
        measure_again();
        std::fprintf(stderr, "%d tries: %.2f ms\n", i + 1, finds_.front().milliseconds);
      }
    }
  }

  void print() {
    measure_again();
    for (const Find &find : finds_) {
      std::printf("{");
      for (const auto &range : kDottedRanges) std::printf("%d, ", find.dots.*range.member);
      std::printf("%uU},  // %.2f ms\n", find.dots.seed, find.milliseconds);
    }
  }

 private:
  // A change of a kept picture takes its place, so that ten different ones are kept.
  void consider(const DottedPicture &dots, std::optional<std::size_t> parent) {
    const bool full = finds_.size() == kKept;
    const std::size_t rival = parent.value_or(kKept - 1);
    const double enough = parent || full ? finds_[rival].milliseconds : 0.0;
    if (cost(dots, 1) <= enough) return;
    const double milliseconds = cost(dots, 3);
    if (milliseconds <= enough) return;
    if (parent || full) {
      finds_[rival] = {dots, milliseconds};
    } else {
      finds_.push_back({dots, milliseconds});
    }
    sort();
  }

  // So that nothing is kept for a disturbance of its first measurement.
  void measure_again() {
    for (Find &find : finds_) find.milliseconds = cost(find.dots, 5);
    sort();
  }

  void sort() {
    std::sort(finds_.begin(), finds_.end(),
              [](const Find &a, const Find &b) { return a.milliseconds > b.milliseconds; });
  }

  Random random_;
  std::vector<Find> finds_;  // slowest first
};

}  // namespace

int main(int argc, char **argv) {
  if (argc != 3) {
    std::fputs("usage: slowest_frames_search TRIES SEED\n", stderr);
    return EXIT_FAILURE;
  }
  gst_init(nullptr, nullptr);
  Search search(std::strtoull(argv[2], nullptr, 10));
  search.run(std::atoi(argv[1]));
  search.print();
  return EXIT_SUCCESS;
}
