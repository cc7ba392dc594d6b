// A pipeline of one element that runs for as long as a server does, with a twin that is made anew.
#ifndef NOXVISUALS_SOAK_PIPELINE_H_
#define NOXVISUALS_SOAK_PIPELINE_H_

#include <gst/gst.h>

#include <string>
#include <vector>

#include "noxvisuals/soak_frames.h"
#include "support/harness.h"
#include "support/random.h"

namespace nox::test {

// What happens to a pipeline between two frames.
enum class SoakEvent {
  kNothing,
  kFlush,
  kSeek,
  kEndAndSeek,  // the stream ends, and goes on after a seek
  kPause,
  kReady,
  kNull,
  kCount,
};

class SoakPipeline {
 public:
  // `draws`: what leaves is compared with a fresh element's output, else with what entered.
  SoakPipeline(const std::string &element, bool draws);
  ~SoakPipeline();
  SoakPipeline(const SoakPipeline &) = delete;
  SoakPipeline &operator=(const SoakPipeline &) = delete;

  // New caps from the next frame on.
  void set_scene(const SoakScene &scene);
  // Pushes so many frames and takes as many out; returns what went wrong, or "".
  std::string run(int frames, Random *random);
  std::string happen(SoakEvent event);

  long entered() const { return entered_; }
  long left() const { return left_; }
  long pens() const { return pens_; }

 private:
  std::string take(GstBuffer *in);
  std::string compare(GstBuffer *in, GstBuffer *out);
  std::string error_on_the_bus();
  std::string seek();

  std::string element_;
  bool draws_;
  ObjectPtr<GstElement> pipeline_;
  ObjectPtr<GstElement> source_;
  ObjectPtr<GstElement> sink_;
  Harness twin_;
  SoakScene scene_ = SoakScene::at_rest();
  GstClockTime time_ = 0;
  long entered_ = 0;
  long left_ = 0;
  long pens_ = 0;
};

}  // namespace nox::test

#endif  // NOXVISUALS_SOAK_PIPELINE_H_
