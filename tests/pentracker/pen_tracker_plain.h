// The pen tracker told pixel by pixel: what pen_tracker_process must reproduce.
#ifndef PENTRACKER_PEN_TRACKER_PLAIN_H_
#define PENTRACKER_PEN_TRACKER_PLAIN_H_

#include <cstdint>
#include <vector>

#include "pentracker/blob_list_plain.h"
#include "scaler/scaler_plain.h"
#include "video/nox_video_frame.h"

namespace nox::test {

struct PenPosition {
  int found = 0;
  float x = 0, y = 0;
  std::int32_t pressed = 0;
};

class PlainPenTracker {
 public:
  PlainPenTracker();
  PlainPenTracker(const PlainPenTracker &) = delete;
  PlainPenTracker &operator=(const PlainPenTracker &) = delete;

  PenPosition process(const NoxVideoFrame &frame);

  PlainBlobList luma, v, u;

 private:
  using Plane = std::vector<std::uint8_t>;

  // Leaves `work` as it is where no scaler can be chosen.
  static void scale(const NoxVideoFrame &frame, int plane, Plane *work);
  void label(const Plane &work, const std::vector<PlainPixel> &growth, PlainBlobList *list);
  bool keep_spot(const PlainBlob &blob) const;
  void weigh(PlainBlob *candidate);
  void choose();

  Plane luma_work_, u_work_, v_work_;
  PlainBlob *pen_ = nullptr;
  bool pressed_ = false, found_ = false;
  float best_ = 0;
  PlainBlob *chosen_ = nullptr;
  bool flag_ = false;
};

}  // namespace nox::test

#endif  // PENTRACKER_PEN_TRACKER_PLAIN_H_
