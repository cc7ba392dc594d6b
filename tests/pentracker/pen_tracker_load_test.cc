// Pictures made to cost as much time and memory as they can.
#include <gtest/gtest.h>
#include <malloc.h>
#include <time.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "pentracker/dotted_picture.h"
#include "pentracker/pen_pictures.h"
#include "pentracker/pen_tracker.h"
#include "pentracker/slowest_frames.h"
#include "support/quick.h"
#include "support/random.h"

#ifdef __SANITIZE_ADDRESS__
// Of sanitizer/allocator_interface.h, which g++ does not always bring with it.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

namespace nox::test {
namespace {

struct TrackerDeleter {
  void operator()(PenTracker *tracker) const { pen_tracker_free(tracker); }
};
using TrackerPtr = std::unique_ptr<PenTracker, TrackerDeleter>;

int process(PenTracker *tracker, const NoxVideoFrame &picture) {
  float x = 0;
  float y = 0;
  std::int32_t pressed = 0;
  NoxVideoFrame frame = picture;
  return pen_tracker_process(tracker, &frame, &frame, &x, &y, &pressed);
}

using Size = std::int32_t;

void paint(PenPicture *picture, int plane, const std::function<bool(Size, Size)> &bright) {
  for (Size y = 0; y < picture->frame().plane_heights[plane]; ++y) {
    for (Size x = 0; x < picture->frame().plane_widths[plane]; ++x) {
      picture->row(plane, y)[x] = bright(x, y) ? 255 : 0;
    }
  }
}

// A frame of thirty a second, on any machine; docs/performance.md has what a frame takes on one.
constexpr double kMostMilliseconds = 33.0;
constexpr std::size_t kMostMegabytes = 100;

// Each load until the history is full of it, the last one until it has gone through all others.
constexpr int kFrames = 31;

// At work size the luma plane is taken as it is, and chroma is enlarged to it.
struct Load {
  std::string name;
  std::function<void(PenPicture *, int frame, Random *)> draw;
  std::int32_t scale = 1;  // of the picture to the work size
};

// How a failing test shows its load.
void PrintTo(const Load &load, std::ostream *out) {
  *out << load.name;
}

// The most spots that growing by one pixel leaves apart: squares of 3 by 3 that touch at corners.
bool tile_centre(Size x, Size y) {
  return x % 3 == 1 && y % 3 == 1 && (x / 3 + y / 3) % 2 == 0;
}

// The most regions: single samples so far apart that their discs hardly touch.
bool region_centre(Size x, Size y) {
  return x % 9 == 4 && y % 9 == 4;
}

std::vector<Load> made_up_loads() {
  return {
      {"white",
       [](PenPicture *p, int, Random *) {
         for (int i : {0, 1, 2}) paint(p, i, [](Size, Size) { return true; });
       }},
      {"noise", [](PenPicture *p, int, Random *r) { p->fill_random(r); }},
      {"checkerboard",
       [](PenPicture *p, int f, Random *) {
         for (int i : {0, 1, 2}) paint(p, i, [f](Size x, Size y) { return (x + y + f) % 2 == 0; });
       }},
      {"tiles_in_one_region",
       [](PenPicture *p, int, Random *) {
         paint(p, 0, tile_centre);
         for (int i : {1, 2}) paint(p, i, [](Size, Size) { return true; });
       }},
      {"jumping_tiles_in_many_regions",
       [](PenPicture *p, int f, Random *) {
         paint(p, 0, [f](Size x, Size y) { return tile_centre(x + f % 3, y + f / 3 % 3); });
         for (int i : {1, 2}) {
           paint(p, i, [f](Size x, Size y) { return region_centre(x + f % 4, y); });
         }
       }},
      {"random_tiles",
       [](PenPicture *p, int, Random *r) {
         paint(p, 0, [r](Size x, Size y) { return tile_centre(x, y) && r->chance(0.7); });
         for (int i : {1, 2}) paint(p, i, [](Size, Size) { return true; });
       }},
      {"tiles_after_nothing",
       [](PenPicture *p, int f, Random *r) {
         paint(p, 0, [f, r](Size x, Size y) {
           return f % 2 == 0 && tile_centre(x, y) && r->chance(0.8);
         });
         for (int i : {1, 2}) paint(p, i, [](Size, Size) { return true; });
       }},
      {"sparse_dots",
       [](PenPicture *p, int, Random *r) {
         paint(p, 0, [r](Size, Size) { return r->chance(0.04); });
         for (int i : {1, 2}) paint(p, i, [](Size, Size) { return true; });
       }},
      {"blocks",
       [](PenPicture *p, int f, Random *) {
         paint(p, 0, [f](Size x, Size y) { return (x + f) % 31 < 28 && y % 31 < 28; });
         for (int i : {1, 2}) paint(p, i, [](Size, Size) { return true; });
       }},
  };
}

// What a search has found to cost most.
void add_dots(std::vector<Load> *loads) {
  int number = 0;
  for (const DottedPicture &dots : kSlowestFrames) {
    const auto draw = [&dots](PenPicture *p, int f, Random *) {
      NoxVideoFrame frame = p->frame();
      draw_dots(dots, f, &frame);
    };
    loads->push_back({"dots_" + std::to_string(++number), draw, dots.scale});
  }
}

constexpr const char *kAllInTurn = "all_in_turn";

const std::vector<Load> &loads() {
  static const std::vector<Load> all = [] {
    std::vector<Load> loads = made_up_loads();
    add_dots(&loads);
    const auto in_turn = [before = loads](PenPicture *p, int f, Random *r) {
      before[static_cast<std::size_t>(f / kFrames) % before.size()].draw(p, f, r);
    };
    loads.push_back({kAllInTurn, in_turn});
    return loads;
  }();
  return all;
}

class EveryLoad : public testing::TestWithParam<Load> {};

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kSanitized = true;
#else
constexpr bool kSanitized = false;
#endif

// Under a checker time means nothing.
bool is_slowed_down() {
#ifdef __OPTIMIZE__
  return kSanitized || quick();
#else
  return true;
#endif
}

// Memory in use by the program; the tests here run one tracker at a time.
std::size_t allocated_bytes() {
#ifdef __SANITIZE_ADDRESS__
  return __sanitizer_get_current_allocated_bytes();  // has an allocator of its own
#else
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
#endif
}

TEST_P(EveryLoad, StaysWithinAFrameOfThirtyASecondAndWithin100MegabytesOfMemory) {
  const std::size_t before = allocated_bytes();
  const TrackerPtr tracker(pen_tracker_new());
  PenPicture picture(448 * GetParam().scale, 252 * GetParam().scale);
  Random random(31);
  double slowest = 0;
  std::size_t most = 0;
  const bool in_turn = GetParam().name == kAllInTurn;
  const int rounds = in_turn ? static_cast<int>(loads().size()) : 2;
  const int frames = quick() ? 3 : rounds * kFrames;
  for (int frame = 0; frame < frames; ++frame) {
    GetParam().draw(&picture, frame, &random);
    // This thread's own time: a busy machine is not what is measured.
    timespec start{}, end{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &start);
    process(tracker.get(), picture.frame());
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &end);
    const double ms = static_cast<double>(end.tv_sec - start.tv_sec) * 1e3 +
                      static_cast<double>(end.tv_nsec - start.tv_nsec) / 1e6;
    slowest = std::max(slowest, ms);
    most = std::max(most, allocated_bytes() - before);
  }
  RecordProperty("slowest_ms", std::to_string(slowest));
  RecordProperty("megabytes", std::to_string(most >> 20));
  if (!is_slowed_down()) {
    EXPECT_LT(slowest, kMostMilliseconds);
  }
  EXPECT_LT(most, kMostMegabytes << 20);
  std::printf("%s: slowest frame %.2f ms, at most %zu MiB\n", GetParam().name.c_str(), slowest,
              most >> 20);
}

INSTANTIATE_TEST_SUITE_P(Loads, EveryLoad, testing::ValuesIn(loads()),
                         [](const auto &load) { return load.param.name; });

// Pictures of the leak test, and how long each of them stays.
constexpr int kPictures = 90;
constexpr int kFramesOfASize = 10;

// A sanitizer finds every lost block when the program ends, and takes up to 10 ms a frame: two
// rounds of all pictures are enough to show what is kept without being lost.
int leak_test_frames() {
  if (quick()) return 60;
  return kSanitized ? 2 * kPictures * kFramesOfASize : 10000;
}

TEST(PenTracker, KeepsNothingOfTenThousandFramesWithASizeChangeEveryTen) {
  constexpr Size kWidths[] = {64, 448, 96, 33, 1, 160, 30, 2, 500};
  constexpr Size kHeights[] = {48, 252, 54, 77, 1, 90, 300, 2, 20, 31};
  const TrackerPtr tracker(pen_tracker_new());
  Random random(32);
  std::vector<std::unique_ptr<PenPicture>> pictures;
  for (std::size_t i = 0; i < kPictures; ++i) {
    pictures.push_back(std::make_unique<PenPicture>(kWidths[i % 9], kHeights[i % 10]));
    if (i % 4 == 0) {
      pictures.back()->fill_random(&random);
    } else {
      pictures.back()->draw_pen(0.5, 0.5, 6, i % 2 == 0 ? 1 : 2);
    }
  }
  const int frames = leak_test_frames();
  std::size_t after_one_round = 0;
  for (int frame = 0; frame < frames; ++frame) {
    process(tracker.get(),
            pictures[static_cast<std::size_t>(frame / kFramesOfASize % kPictures)]->frame());
    if (frame == frames / 2) after_one_round = allocated_bytes();
  }
  // Blocks of the history grow and shrink with what they hold; scaler tables must not pile up.
  EXPECT_LT(allocated_bytes(), after_one_round + (std::size_t{4} << 20));
}

}  // namespace
}  // namespace nox::test
