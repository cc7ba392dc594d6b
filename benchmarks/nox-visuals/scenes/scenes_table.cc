// scenes_table: prints the table of docs/pen-tracking.md: how often the pen is found in drawn
// scenes that went through an encoder, as the frames are, darkened, masked, with recovery, and all
// together.
// usage: scenes_table FOLDER VIDEOS   (clips are made in FOLDER unless they lie there; VIDEOS may
// be missing)
#include <gst/gst.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "nox-visuals/masks/auto_darkening.h"
#include "nox-visuals/masks/blanking.h"
#include "nox-visuals/masks/mask_learner.h"
#include "nox-visuals/scenes/cases.h"
#include "nox-visuals/scenes/score.h"
#include "nox-visuals/steps/recovery.h"
#include "pentracker/pen_tracker.h"

namespace nox::scenes {
namespace {

struct Help {
  const char *name;
  bool darken = false;  // by what the scene asks for
  bool mask = false;
  bool recover = false;
  std::uint8_t less = 0;  // luma that is taken from every sample
};

constexpr Help kHelps[] = {
    {"plain"},
    {"less 30", false, false, false, 30},
    {"less 50", false, false, false, 50},
    {"less 70", false, false, false, 70},
    {"darkened", true},
    {"masked", false, true},
    {"recovered", false, false, true},
    {"all", true, true, true},
};
constexpr std::size_t kHelpCount = std::size(kHelps);

// What `nox-visuals track` does with the frames of a clip.
class Track {
 public:
  Track(const Help &help, const app::Blanking &mask, const Clip &clip)
      : help_(help), mask_(help.mask ? mask : app::Blanking()), copy_(clip.width(), clip.height()) {
    copy_.append();
  }
  ~Track() { pen_tracker_free(tracker_); }
  Track(const Track &) = delete;
  Track &operator=(const Track &) = delete;

  std::optional<app::Sighting> look(const NoxVideoFrame &as_it_came) {
    NoxVideoFrame frame = copy_.frame(0);
    std::memcpy(frame.planes[0], as_it_came.planes[0], copy_.frame_bytes());
    if (help_.darken) darkening_.look(frame, pressed_);
    mask_.apply(&frame, help_.darken ? darkening_.level() : help_.less);
    std::optional<app::Sighting> seen = find(frame);
    if (help_.recover && seen) recovery_.saw(*seen);
    if (help_.recover && !seen && recovery_.looks()) seen = recovery_.look(frame);
    pressed_ = seen && seen->pressed;
    return seen;
  }

 private:
  std::optional<app::Sighting> find(const NoxVideoFrame &frame) {
    app::Sighting at;
    std::int32_t pressed = 0;
    if (pen_tracker_process(tracker_, &frame, nullptr, &at.x, &at.y, &pressed) == 0) return {};
    at.pressed = pressed != 0;
    return at;
  }

  Help help_;
  app::Blanking mask_;
  Clip copy_;
  PenTracker *tracker_ = pen_tracker_new();
  app::AutoDarkening darkening_;
  app::Recovery recovery_;
  bool pressed_ = false;
};

app::Blanking learn(Clip empty) {
  app::MaskLearner learner;
  const std::size_t frames = empty.frames();
  for (std::size_t i = 0; i < frames; ++i) learner.look(empty.frame(i), i >= frames / 2);
  const app::PictureMask mask = learner.mask();
  if (mask.share() > app::kMostHidden) return {};
  return app::Blanking(mask.scaled(empty.width(), empty.height()));
}

Score run(const Help &help, const app::Blanking &mask, Recording *recording) {
  Track track(help, mask, recording->clip);
  Sightings seen;
  for (std::size_t i = 0; i < recording->clip.frames(); ++i) {
    seen.push_back(track.look(recording->clip.frame(i)));
  }
  return compare(seen, recording->truth, recording->clip.width(), recording->clip.height());
}

double percent(int part, int whole) {
  return whole == 0 ? 0 : 100.0 * part / whole;
}

void print_score(const Score &score) {
  const double wrong = score.frames == 0 ? 0 : 1000.0 * score.wrong / score.frames;
  if (score.visible == 0) {
    std::printf(" – / %.0f |", wrong);
  } else {
    std::printf(" %.1f / %.0f |", percent(score.found, score.visible), wrong);
  }
}

void print_row(const Case &scene, const std::vector<Score> &scores) {
  std::printf("| %s |", scene.name().c_str());
  for (const Score &score : scores) print_score(score);
  const Score &all = scores.back();
  if (all.found == 0) {
    std::printf(" – | – |\n");
  } else {
    std::printf(" %.1f, %.1f | %.1f |\n", all.error(0.5), all.error(0.95),
                percent(all.right, all.found));
  }
  std::fflush(stdout);
}

int print_table(const std::string &folder, const std::string &videos) {
  std::filesystem::create_directories(folder);
  std::printf("| scene |");
  for (const Help &help : kHelps) std::printf(" %s |", help.name);
  std::printf(" error, px | state, %% |\n|---|");
  for (std::size_t i = 0; i < kHelpCount + 2; ++i) std::printf("---|");
  std::printf("\n");
  for (const Case &scene : all_cases(videos)) {
    Recording recording = record(scene, folder, videos);
    const app::Blanking mask = learn(record_without_pen(scene, folder, videos));
    std::vector<Score> scores;
    for (const Help &help : kHelps) scores.push_back(run(help, mask, &recording));
    print_row(scene, scores);
  }
  return EXIT_SUCCESS;
}

}  // namespace
}  // namespace nox::scenes

int main(int argc, char **argv) {
  gst_init(nullptr, nullptr);
  if (argc != 3) {
    std::fputs("usage: scenes_table FOLDER VIDEOS\n", stderr);
    return EXIT_FAILURE;
  }
  try {
    return nox::scenes::print_table(argv[1], argv[2]);
  } catch (const std::exception &error) {
    std::fprintf(stderr, "scenes_table: %s\n", error.what());
    return EXIT_FAILURE;
  }
}
