// Makes observations of the codes in the frames that come to an element.
#ifndef NOX_VISUALS_STREAM_CODE_OBSERVER_H_
#define NOX_VISUALS_STREAM_CODE_OBSERVER_H_

#include <gst/gst.h>

#include <functional>
#include <memory>

#include "nox-visuals/observation.h"
#include "nox-visuals/readers/background_reader.h"
#include "nox-visuals/readers/readers.h"
#include "nox-visuals/stream/counts.h"
#include "nox-visuals/stream/observer.h"

namespace nox::app {

// In files all readers take each frame. In live streams the slow ones take the newest frame in a
// thread of their own, and what only they see comes after what others saw in later frames.
class CodeObserver final : public Observer {
 public:
  // `push` is called from the streaming thread, and for live streams from another one too. `counts`
  // must outlive it.
  CodeObserver(Readers readers, Counts *counts, std::function<void(Observation)> push);

  const char *element() const override { return "eye"; }
  void attach(GstElement *eye) override;
  void go_live() override;
  void finish() override;

 private:
  static GstPadProbeReturn on_buffer(GstPad *pad, GstPadProbeInfo *info, gpointer observer);
  void look(GstPad *pad, GstBuffer *buffer);
  void read(const Moment &when, const qr::Luma &picture);

  Readers readers_;
  Counts *counts_;
  std::function<void(Observation)> push_;
  std::unique_ptr<BackgroundReader> background_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_CODE_OBSERVER_H_
