// A stream from its source to its end: the running pipeline, what its bus says, signals, progress,
// and new tries when a source goes away.
#ifndef NOX_VISUALS_STREAM_STREAM_H_
#define NOX_VISUALS_STREAM_STREAM_H_

#include <gst/gst.h>

#include <atomic>
#include <functional>
#include <optional>
#include <string>

#include "nox-visuals/gst_pointers.h"
#include "nox-visuals/sources/source.h"
#include "nox-visuals/stream/counts.h"

namespace nox::app {

// The name of a sink that writes a file; all others show previews.
inline constexpr const char *kFileSink = "file";

// Why a stream failed.
struct Failure {
  std::string why;         // empty: it did not
  bool of_output = false;  // a sink could not be opened, or broke; else the source
};

// What a command does with a source.
struct StreamPlan {
  Source source;
  std::string word;  // the source as people named it, for messages
  std::string tail;  // launch description of what takes the I420 or A420 frames, sinks too
  std::string file;  // what the tail's sink of the name kFileSink writes; empty: there is none
  std::optional<double> retry;  // the longest wait between two tries, in seconds; none: no try
  // Called with each new pipeline before it starts, to find elements of `tail` by their names.
  std::function<void(GstElement *pipeline)> started = [](GstElement *) {};
  // Called when a pipeline that will be followed by another one is gone.
  std::function<void()> gone = [] {};
  // Called when the stream is to end before its end: from now on nothing may make it wait.
  std::function<void()> hurry = [] {};
};

class Stream {
 public:
  // `counts` must outlive it; Counts::frames is counted by who watches the pipeline.
  explicit Stream(Counts *counts);
  ~Stream();
  Stream(const Stream &) = delete;
  Stream &operator=(const Stream &) = delete;

  // Opens the source: afterwards it is known whether the stream is live. Throws StreamError.
  // Frames of a file may flow from here on, those of a live stream only from run() on.
  void open(StreamPlan plan);

  // While it is open.
  GstElement *pipeline() const { return pipeline_.get(); }

  // A live source delivers at its own pace: of its frames the newest wins.
  bool live() const { return live_; }

  // Runs until the source ends, a signal comes, stop() is called or the stream fails for good, of
  // which it returns the reason. The pipeline is gone then.
  Failure run();

  // Ends run() soon; from any thread.
  void stop();

 private:
  void build();
  void drop_pipeline();
  GstPointer<GstElement> arrivals() const;
  void handle(GstMessage *message);
  void source_failed(const std::string &why);
  void output_failed(const std::string &sink, const std::string &why);
  void try_again();
  void finish();
  void look();
  void look_for_frames();
  void tell_progress();
  bool returns() const;

  static gboolean on_message(GstBus *bus, GstMessage *message, gpointer stream);
  static gboolean on_retry(gpointer stream);
  static gboolean on_look(gpointer stream);
  static gboolean on_late(gpointer stream);

  StreamPlan plan_;
  Counts *counts_;
  GMainLoop *loop_;
  GstPointer<GstElement> pipeline_;
  guint bus_watch_ = 0;
  guint retry_timer_ = 0;
  guint finish_timer_ = 0;
  bool live_ = false;
  bool finishing_ = false;
  std::atomic<bool> stop_ = false;
  bool away_ = false;     // the source went and is not back yet
  double next_wait_ = 0;  // seconds
  std::uint64_t frames_seen_ = 0;
  gint64 last_frame_us_ = 0;
  gint64 started_us_ = 0;
  std::string missing_;  // a plugin that the pipeline lacks, and its package
  Failure failure_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_STREAM_H_
