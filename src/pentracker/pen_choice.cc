#include "pentracker/pen_choice.h"

#include <cstdint>

namespace nox::pentracker {

namespace {

constexpr float kBelowEveryScore = -1.0F;

// The best of the candidates seen so far. It is shared by all of a frame: a later candidate must
// lie in a region that was followed longer than the best one's.
struct Choice {
  float best = kBelowEveryScore;
  Blob *chosen = nullptr;
  bool pressed = false;
};

// Weighs the regions that `candidate` lies in; of equal ones the first counts.
void weigh_regions(Blob *candidate, const BlobList *regions, bool pressed, Choice *choice) {
  const std::int32_t count = blob_list_count(regions);
  for (std::int32_t i = 0; i < count; ++i) {
    const Blob *region = blob_list_get(regions, i);
    if (blob_inside(candidate, region) == 0) continue;
    const float score = blob_history_score(region);
    if (score > choice->best) *choice = {score, candidate, pressed};
  }
}

void weigh(const PenTracker *tracker, Blob *candidate, Choice *choice) {
  weigh_regions(candidate, tracker->u_blobs, false, choice);
  // A pen that was not seen before cannot appear pressed.
  if (tracker->found != 0) weigh_regions(candidate, tracker->v_blobs, true, choice);
}

// Weighs every blob that was followed at least as long as all before it in the list.
void search(const PenTracker *tracker, Choice *choice) {
  const std::int32_t count = blob_list_count(tracker->luma_blobs);
  float longest = kBelowEveryScore;
  for (std::int32_t i = 0; i < count; ++i) {
    Blob *candidate = blob_list_get(tracker->luma_blobs, i);
    const float score = blob_history_score(candidate);
    if (longest > score) continue;
    longest = score;
    weigh(tracker, candidate, choice);
  }
}

}  // namespace

void choose_pen(PenTracker *tracker) {
  Choice choice;
  const Blob *last = tracker->pen;
  if (last != nullptr && last->successor != nullptr && last->successor_score > 0.0F) {
    // The pen is followed, and nothing else is looked at even when it has left every region.
    weigh(tracker, last->successor, &choice);
  } else {
    search(tracker, &choice);
  }
  tracker->pen = choice.chosen;
  tracker->found = choice.chosen != nullptr ? 1 : 0;
  if (choice.chosen != nullptr) tracker->pressed = choice.pressed ? 1 : 0;
}

}  // namespace nox::pentracker
