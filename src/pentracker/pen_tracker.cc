#include "pentracker/pen_tracker.h"

#include <cstddef>
#include <cstring>
#include <initializer_list>

#include "pentracker/pen_choice.h"

namespace {

// A sample counts as bright, or as strongly coloured, above this.
constexpr std::uint32_t kThreshold = 170;

constexpr std::int32_t kSquareSide = 3;
constexpr std::int32_t kDiscSide = 15;

// Columns of each row that belong to the disc, as half widths around the middle one.
constexpr std::int32_t kDiscReach[kDiscSide] = {2, 4, 5, 6, 6, 7, 7, 7, 7, 7, 6, 6, 5, 4, 2};

StructuringElement *new_square() {
  std::uint8_t members[kSquareSide * kSquareSide];
  std::memset(members, 1, sizeof(members));
  return structuring_element_new(members, kSquareSide, kSquareSide);
}

StructuringElement *new_disc() {
  std::uint8_t members[kDiscSide * kDiscSide] = {};
  for (std::int32_t row = 0; row < kDiscSide; ++row) {
    const std::int32_t reach = kDiscReach[row];
    std::memset(members + std::ptrdiff_t{row} * kDiscSide + kDiscSide / 2 - reach, 1,
                static_cast<std::size_t>(2 * reach + 1));
  }
  return structuring_element_new(members, kDiscSide, kDiscSide);
}

// A picture for which no scaler can be chosen leaves the work planes as they are: they start black,
// so that nothing depends on what the memory held before.
void alloc_work_frame(NoxVideoFrame *frame) {
  nox_video_frame_alloc(frame, kNoxFormatGray, kPenWorkWidth, kPenWorkHeight);
  std::memset(frame->planes[0], 0, std::size_t{kPenWorkWidth} * kPenWorkHeight);
}

void select_scalers(PenTracker *tracker, const NoxVideoFrame *frame) {
  if (frame->width == tracker->last_width && frame->height == tracker->last_height) return;
  const ScalerSize work{tracker->work_width, tracker->work_height};
  scaler_select(&tracker->luma_scaler, {frame->width, frame->height}, work);
  scaler_select(&tracker->chroma_scaler, {frame->width / 2, frame->height / 2}, work);
  tracker->last_width = frame->width;
  tracker->last_height = frame->height;
}

// One plane of the picture as a picture of its own; no sample is copied.
NoxVideoFrame plane_view(const NoxVideoFrame *frame, int plane, std::int32_t width,
                         std::int32_t height) {
  NoxVideoFrame view{};
  view.format = kNoxFormatGray;
  view.width = view.plane_widths[0] = width;
  view.height = view.plane_heights[0] = height;
  view.n_planes = 1;
  view.planes[0] = frame->planes[plane];
  view.strides[0] = frame->strides[plane];
  return view;
}

void scale(Scaler *scaler, const NoxVideoFrame &view, NoxVideoFrame *work) {
  // A first picture of 0 by 0 is no change of size, so nothing has been chosen for it.
  if (scaler->ops != nullptr) scaler_process(scaler, &view, work);
}

void make_mask(const NoxVideoFrame &work, BitMask *mask, BitMask *dilated,
               const StructuringElement *growth) {
  bitmask_threshold(mask, work.planes[0], work.strides[0], kThreshold);
  bitmask_dilate(dilated, mask, growth);
}

void look_at(PenTracker *tracker, const NoxVideoFrame *frame) {
  const std::int32_t half_width = frame->width / 2;
  const std::int32_t half_height = frame->height / 2;
  scale(&tracker->luma_scaler, plane_view(frame, 0, frame->width, frame->height),
        &tracker->luma_work_frame);
  scale(&tracker->chroma_scaler, plane_view(frame, 1, half_width, half_height),
        &tracker->u_work_frame);
  scale(&tracker->chroma_scaler, plane_view(frame, 2, half_width, half_height),
        &tracker->v_work_frame);
  make_mask(tracker->luma_work_frame, tracker->luma_mask, tracker->luma_dilated,
            tracker->luma_growth);
  make_mask(tracker->u_work_frame, tracker->u_mask, tracker->u_dilated, tracker->chroma_growth);
  make_mask(tracker->v_work_frame, tracker->v_mask, tracker->v_dilated, tracker->chroma_growth);
  // Luma comes last: its filter asks for the coloured regions of this frame.
  blob_list_label(tracker->u_blobs, tracker->u_dilated);
  blob_list_label(tracker->v_blobs, tracker->v_dilated);
  blob_list_label(tracker->luma_blobs, tracker->luma_dilated);
}

}  // namespace

PenTracker *pen_tracker_new() {
  auto *tracker = new PenTracker{};
  tracker->work_width = kPenWorkWidth;
  tracker->work_height = kPenWorkHeight;
  for (NoxVideoFrame *frame :
       {&tracker->luma_work_frame, &tracker->u_work_frame, &tracker->v_work_frame}) {
    alloc_work_frame(frame);
  }
  for (BitMask **mask : {&tracker->luma_mask, &tracker->u_mask, &tracker->v_mask,
                         &tracker->luma_dilated, &tracker->u_dilated, &tracker->v_dilated}) {
    *mask = bitmask_new(kPenWorkWidth, kPenWorkHeight);
  }
  tracker->luma_growth = new_square();
  tracker->chroma_growth = new_disc();
  for (BlobList **list : {&tracker->luma_blobs, &tracker->v_blobs, &tracker->u_blobs}) {
    *list = blob_list_new(kPenWorkWidth, kPenWorkHeight);
  }
  blob_list_set_filter(tracker->luma_blobs, luma_blob_filter, tracker);
  blob_list_set_filter(tracker->v_blobs, chroma_blob_filter, tracker);
  blob_list_set_filter(tracker->u_blobs, chroma_blob_filter, tracker);
  return tracker;
}

void pen_tracker_free(PenTracker *tracker) {
  if (tracker == nullptr) return;
  scaler_destroy(&tracker->luma_scaler);
  scaler_destroy(&tracker->chroma_scaler);
  for (NoxVideoFrame *frame :
       {&tracker->luma_work_frame, &tracker->u_work_frame, &tracker->v_work_frame}) {
    nox_video_frame_free_planes(frame);
  }
  for (BitMask *mask : {tracker->luma_mask, tracker->u_mask, tracker->v_mask, tracker->luma_dilated,
                        tracker->u_dilated, tracker->v_dilated}) {
    bitmask_free(mask);
  }
  structuring_element_free(tracker->luma_growth);
  structuring_element_free(tracker->chroma_growth);
  for (BlobList *list : {tracker->luma_blobs, tracker->v_blobs, tracker->u_blobs}) {
    blob_list_free(list);
  }
  delete tracker;
}

int pen_tracker_process(PenTracker *tracker, const NoxVideoFrame *frame, NoxVideoFrame * /*output*/,
                        float *x, float *y, std::int32_t *pressed) {
  select_scalers(tracker, frame);
  look_at(tracker, frame);
  nox::pentracker::choose_pen(tracker);
  if (tracker->pen == nullptr) return 0;
  const auto width = static_cast<float>(tracker->work_width);
  const auto height = static_cast<float>(tracker->work_height);
  *x = (width - 1.0F - tracker->pen->centre_x) / width;  // mirrored, deliberately
  *y = tracker->pen->centre_y / height;
  *pressed = tracker->pressed != 0 ? 1 : 0;
  return tracker->found != 0 ? 1 : 0;
}
