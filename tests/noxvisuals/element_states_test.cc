// Every element through all changes of state, with and without data, from one thread and several.
#include <gst/gst.h>
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "noxvisuals/every_element.h"
#include "support/pad_line.h"
#include "support/pipeline.h"
#include "support/repetitions.h"

namespace nox::test {
namespace {

constexpr int kThreads = 4;

// From NULL through every change between two of the four states, once each, back to NULL.
constexpr GstState kTour[] = {
    GST_STATE_READY,   GST_STATE_NULL,   GST_STATE_PAUSED,  GST_STATE_NULL,
    GST_STATE_PLAYING, GST_STATE_READY,  GST_STATE_PAUSED,  GST_STATE_READY,
    GST_STATE_PLAYING, GST_STATE_PAUSED, GST_STATE_PLAYING, GST_STATE_NULL,
};

// Called behind each change of state, with the state that was reached.
using AtEachState = std::function<void(GstState)>;

void do_nothing(GstState /*state*/) {}

// Returns the number of changes that failed.
int go_on_tours(GstElement *element, int tours, const AtEachState &at_state) {
  int failed = 0;
  for (int i = 0; i < tours; ++i) {
    for (const GstState state : kTour) {
      if (gst_element_set_state(element, state) == GST_STATE_CHANGE_FAILURE) ++failed;
      at_state(state);
    }
  }
  return failed;
}

// At least `tours` in sum, by several threads at once, each as fast as the others let it. A frame
// that is underway when the element stops and starts again comes before the new start's events:
// GStreamer warns of that, and the element takes it with the caps that it knows.
int go_on_tours_together(GstElement *element, int tours) {
  std::atomic<int> failed{0};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&] { failed += go_on_tours(element, tours / kThreads + 1, do_nothing); });
  }
  for (std::thread &thread : threads) thread.join();
  return failed;
}

// Pushes frames until it is told to stop.
class Feeder {
 public:
  explicit Feeder(PadLine *line) : line_(line), thread_([this] { feed(); }) {}
  ~Feeder() {
    stop_ = true;
    thread_.join();
  }
  Feeder(const Feeder &) = delete;
  Feeder &operator=(const Feeder &) = delete;

 private:
  void feed() {
    // Between two states any answer may come: what counts is that frames pass again behind them.
    while (!stop_) {
      if (line_->push(new_small_frame()) != GST_FLOW_OK) std::this_thread::yield();
    }
  }

  PadLine *line_;
  std::atomic<bool> stop_{false};
  std::thread thread_;
};

void expect_that_it_works(GstElement *element, PadLine *line) {
  EXPECT_EQ(gst_element_set_state(element, GST_STATE_PLAYING), GST_STATE_CHANGE_SUCCESS);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(line->push(new_small_frame()), GST_FLOW_OK);
  EXPECT_EQ(line->received(), line->passed());
  EXPECT_EQ(gst_element_set_state(element, GST_STATE_NULL), GST_STATE_CHANGE_SUCCESS);
}

using ElementStates = ForEachElement;

TEST_P(ElementStates, ThroughAllOfThemWithoutData) {
  const ObjectPtr<GstElement> element = new_element(GetParam());
  PadLine line(element.get(), small_info());
  EXPECT_EQ(go_on_tours(element.get(), repetitions(1000, 1000), do_nothing), 0);
  EXPECT_EQ(go_on_tours_together(element.get(), repetitions(1000, 1000)), 0);
  expect_that_it_works(element.get(), &line);
}

// Waits for a frame wherever one can pass, for so long that only a stream that stands still is
// given up.
class FrameAtEachState {
 public:
  explicit FrameAtEachState(const PadLine *line) : line_(line) {}
  void operator()(GstState state) const {
    if (state < GST_STATE_PAUSED) return;
    const int before = line_->received();
    for (int i = 0; i < 10'000 && line_->received() == before; ++i) g_usleep(i < 100 ? 10 : 1000);
    ASSERT_GT(line_->received(), before) << "no frame in " << gst_element_state_get_name(state);
  }

 private:
  const PadLine *line_;
};

TEST_P(ElementStates, ThroughAllOfThemWhileFramesCome) {
  const ObjectPtr<GstElement> element = new_element(GetParam());
  PadLine line(element.get(), small_info());
  {
    const Feeder feeder(&line);
    EXPECT_EQ(go_on_tours(element.get(), repetitions(100, 1000), FrameAtEachState(&line)), 0);
    EXPECT_EQ(go_on_tours_together(element.get(), repetitions(1000, 1000)), 0);
  }
  expect_that_it_works(element.get(), &line);
}

TEST_P(ElementStates, InAPipelineFromSeveralThreads) {
  const std::string description = std::string(
                                      "videotestsrc ! video/x-raw,format=I420,width=64,"
                                      "height=36,framerate=1000/1 ! queue ! ") +
                                  GetParam() + " ! queue ! fakesink sync=false";
  const ObjectPtr<GstElement> pipeline(gst_parse_launch(description.c_str(), nullptr));
  ASSERT_NE(pipeline, nullptr);
  EXPECT_EQ(go_on_tours_together(pipeline.get(), repetitions(40, 1000)), 0);
  gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
  GstState state = GST_STATE_NULL;
  EXPECT_EQ(gst_element_get_state(pipeline.get(), &state, nullptr, 10 * GST_SECOND),
            GST_STATE_CHANGE_SUCCESS);
  EXPECT_EQ(state, GST_STATE_PLAYING);
  const ObjectPtr<GstBus> bus(gst_element_get_bus(pipeline.get()));
  GstMessage *error = gst_bus_pop_filtered(bus.get(), GST_MESSAGE_ERROR);
  EXPECT_EQ(error, nullptr);
  if (error != nullptr) gst_message_unref(error);
  gst_element_set_state(pipeline.get(), GST_STATE_NULL);
}

INSTANTIATE_TEST_SUITE_P(Elements, ElementStates, testing::ValuesIn(kElementNames), element_name);

}  // namespace
}  // namespace nox::test
