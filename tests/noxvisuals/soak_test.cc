// Elements that run for long: frames of changing size, stride and format through pipelines that are
// flushed, sought in, stopped and started again. NOX_SOAK_FRAMES tells how many frames in sum.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "noxvisuals/soak_frames.h"
#include "noxvisuals/soak_pipeline.h"
#include "support/process_usage.h"
#include "support/quick.h"
#include "support/random.h"

namespace nox::test {
namespace {

// A sanitizer keeps freed memory for a while, and looks for leaks in its own way.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryTells = false;
#else
constexpr bool kMemoryTells = true;
#endif

constexpr int kMeasurements = 20;
constexpr int kWarmUp = 5;  // of the measurements
// What may come and go: the blocks that the tracker keeps from frame to frame, up to a limit of
// their own; the pages around what is in use; GLib's threads that wait for work.
constexpr long kHeapSlackKib = 2048;
constexpr long kResidentSlackKib = 8192;
constexpr long kThreadSlack = 2;

constexpr int kBatch = 8;  // frames under way at once
constexpr int kRestBatches = 5;

long frames_in_sum() {
  const char *frames = std::getenv("NOX_SOAK_FRAMES");
  if (frames != nullptr) return std::atol(frames);
  return quick() ? 400 : kMemoryTells ? 20000 : 4000;
}

class Soak {
 public:
  long frames() const {
    long frames = 0;
    for (const SoakPipeline &pipeline : pipelines_) frames += pipeline.left();
    return frames;
  }
  // One scene through one pipeline after the other. Mostly short; now and then one that outlasts
  // both of the vectorizer's histories.
  std::string play_scenes() {
    for (SoakPipeline &pipeline : pipelines_) {
      const bool both = &pipeline != &pipelines_[2];
      const GstVideoFormat format =
          both && random_.chance(0.5) ? GST_VIDEO_FORMAT_A420 : GST_VIDEO_FORMAT_I420;
      const int frames = random_.chance(0.05) ? 620 : random_.between(1, 130);
      pipeline.set_scene(SoakScene(format, &random_));
      // The tracker's frames cost ten times the others'.
      const bool tracker = &pipeline == &pipelines_[0];
      const std::string wrong = play(&pipeline, tracker ? frames / 6 + 1 : frames);
      if (!wrong.empty()) return wrong;
    }
    return "";
  }
  // Brings all pipelines into the same condition, with the same pictures in every history but the
  // vectorizer's longest, and tells what the process then holds.
  ProcessUsage rest(std::string *wrong) {
    for (SoakPipeline &pipeline : pipelines_) {
      Random same(12);
      pipeline.set_scene(SoakScene::at_rest());
      *wrong += pipeline.happen(SoakEvent::kNull);
      for (int i = 0; i < kRestBatches; ++i) *wrong += pipeline.run(kBatch, &same);
    }
    return process_usage();
  }
  void expect_nothing_lost() const {
    for (const SoakPipeline &pipeline : pipelines_) EXPECT_EQ(pipeline.entered(), pipeline.left());
    EXPECT_GT(pipelines_[0].pens(), pipelines_[0].left() / 100);
  }

 private:
  std::string play(SoakPipeline *pipeline, int frames) {
    std::string wrong;
    while (frames > 0 && wrong.empty()) {
      const int batch = std::min(frames, random_.between(1, kBatch));
      wrong = pipeline->run(batch, &random_);
      frames -= batch;
      if (wrong.empty() && random_.chance(0.1)) {
        const int last = static_cast<int>(SoakEvent::kCount) - 1;
        wrong = pipeline->happen(static_cast<SoakEvent>(random_.between(0, last)));
      }
    }
    return wrong;
  }

  Random random_{11};
  std::array<SoakPipeline, 3> pipelines_{
      {{"noxpentracker", false}, {"noxvectorizer", true}, {"noxqrdec", false}}};
};

// The largest of each that the measurements from `first` to `end` - 1 show.
ProcessUsage most(const std::vector<ProcessUsage> &usage, std::size_t first, std::size_t end) {
  ProcessUsage most;
  for (std::size_t i = first; i < end; ++i) {
    most.resident_kib = std::max(most.resident_kib, usage[i].resident_kib);
    most.heap_kib = std::max(most.heap_kib, usage[i].heap_kib);
    most.descriptors = std::max(most.descriptors, usage[i].descriptors);
    most.threads = std::max(most.threads, usage[i].threads);
  }
  return most;
}

void expect_flat(const std::vector<ProcessUsage> &usage) {
  const ProcessUsage early = most(usage, 0, kWarmUp);
  const ProcessUsage late = most(usage, kWarmUp, usage.size());
  EXPECT_LE(late.descriptors, early.descriptors);
  EXPECT_LE(late.threads, early.threads + kThreadSlack);
  if (!kMemoryTells || quick()) return;
  EXPECT_LE(late.resident_kib, early.resident_kib + kResidentSlackKib);
  EXPECT_LE(late.heap_kib, early.heap_kib + kHeapSlackKib);
}

TEST(Soak, LosesNoFrameAndNoMemory) {
  Soak soak;
  const long frames = frames_in_sum();
  std::vector<ProcessUsage> usage;
  std::string wrong;
  while (usage.size() < kMeasurements) {
    const long until = frames * static_cast<long>(usage.size() + 1) / kMeasurements;
    while (soak.frames() < until) {
      wrong = soak.play_scenes();
      ASSERT_EQ(wrong, "");
    }
    usage.push_back(soak.rest(&wrong));
    ASSERT_EQ(wrong, "");
    std::printf("%9ld frames: resident %ld KiB, heap %ld KiB, %ld descriptors, %ld threads\n",
                soak.frames(), usage.back().resident_kib, usage.back().heap_kib,
                usage.back().descriptors, usage.back().threads);
    std::fflush(stdout);
  }
  soak.expect_nothing_lost();
  expect_flat(usage);
}

}  // namespace
}  // namespace nox::test
