// What may change around an element while frames pass through it: its properties, its links, and
// other pipelines that tell the same navigation object.
#include <gst/gst.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "noxvisuals/every_element.h"
#include "noxvisuals/fake_navigation.h"
#include "support/pad_line.h"
#include "support/pipeline.h"
#include "support/repetitions.h"

namespace nox::test {
namespace {

// An element that plays, fed by a thread of its own until it is dropped. Its frames meet whatever
// the test does meanwhile.
class FedElement {
 public:
  explicit FedElement(const char *name) : element_(new_element(name)) {
    gst_element_set_state(get(), GST_STATE_PLAYING);
    line_ = std::make_unique<PadLine>(get(), small_info());
    thread_ = std::thread([this] { feed(); });
  }
  ~FedElement() {
    stop();
    line_.reset();
    gst_element_set_state(get(), GST_STATE_NULL);
  }
  FedElement(const FedElement &) = delete;
  FedElement &operator=(const FedElement &) = delete;

  GstElement *get() { return element_.get(); }
  PadLine &line() { return *line_; }
  int refused() const { return refused_; }

  // Returns when the stream has stopped, with every frame either passed or refused.
  void stop() {
    stop_ = true;
    if (thread_.joinable()) thread_.join();
  }
  // Waits until another frame was pushed, whatever came of it.
  void wait_for_a_push() {
    const int before = pushed_;
    while (pushed_ == before) std::this_thread::yield();
  }
  void wait_for_a_frame() {
    const int before = line_->received();
    while (line_->received() == before) std::this_thread::yield();
  }

 private:
  void feed() {
    while (!stop_) {
      const GstFlowReturn flow = line_->push(new_small_frame());
      if (flow != GST_FLOW_OK) ++refused_;
      ++pushed_;
    }
  }

  ObjectPtr<GstElement> element_;
  std::unique_ptr<PadLine> line_;
  std::atomic<bool> stop_{false};
  std::atomic<int> pushed_{0};
  std::atomic<int> refused_{0};
  std::thread thread_;
};

using LiveChanges = ForEachElement;

TEST_P(LiveChanges, LinksComeAndGoWhileFramesPass) {
  FedElement fed(GetParam());
  for (int i = 0; i < repetitions(100, 1000); ++i) {
    const bool sink = i % 2 == 0;
    fed.wait_for_a_frame();
    sink ? fed.line().unlink_sink() : fed.line().unlink_source();
    if (i % 3 == 0) fed.wait_for_a_push();
    sink ? fed.line().link_sink() : fed.line().link_source();
  }
  fed.wait_for_a_frame();
  fed.stop();
  EXPECT_EQ(fed.line().received(), fed.line().passed());
  EXPECT_GT(fed.refused(), 0) << "no frame met a link that was gone";
}

TEST_P(LiveChanges, EveryPropertyIsReadWhileFramesPass) {
  FedElement fed(GetParam());
  guint count = 0;
  GParamSpec **specs = g_object_class_list_properties(G_OBJECT_GET_CLASS(fed.get()), &count);
  for (int i = 0; i < repetitions(1000, 1000); ++i) {
    for (guint p = 0; p < count; ++p) {
      GValue value = G_VALUE_INIT;
      g_object_get_property(G_OBJECT(fed.get()), specs[p]->name, &value);
      g_value_unset(&value);
    }
  }
  g_free(specs);
  fed.wait_for_a_frame();
  fed.stop();
  EXPECT_EQ(fed.refused(), 0);
  EXPECT_EQ(fed.line().received(), fed.line().passed());
}

INSTANTIATE_TEST_SUITE_P(Elements, LiveChanges, testing::ValuesIn(kElementNames), element_name);

TEST(LiveChangesOfNoxQrDec, QosIsSetWhileFramesPass) {
  FedElement fed("noxqrdec");
  for (int i = 0; i < repetitions(1000, 10'000); ++i) {
    g_object_set(fed.get(), "qos", i % 2, nullptr);
  }
  fed.wait_for_a_frame();
  fed.stop();
  EXPECT_EQ(fed.refused(), 0);
  EXPECT_EQ(fed.line().received(), fed.line().passed());
}

void set_navigation(GstElement *pipeline, GObject *navigation) {
  const ObjectPtr<GstElement> tracker(gst_bin_get_by_name(GST_BIN(pipeline), "tracker"));
  g_object_set(tracker.get(), "navigation-object", navigation, nullptr);
}

// One thread sets, as the element asks of its host, others read.
TEST(LiveChangesOfNoxPenTracker, TheNavigationObjectIsExchangedWhileItIsReadAndTold) {
  NavigationRecord record;
  {
    FedElement fed("noxpentracker");
    std::atomic<bool> stop{false};
    std::vector<std::thread> readers;
    for (int i = 0; i < 2; ++i) {
      readers.emplace_back([&] {
        while (!stop) {
          GObject *read = nullptr;
          g_object_get(fed.get(), "navigation-object", &read, nullptr);
          g_clear_object(&read);
        }
      });
    }
    for (int i = 0; i < repetitions(300, 1000); ++i) {
      GObject *navigation = fake_navigation_new(&record);
      g_object_set(fed.get(), "navigation-object", navigation, nullptr);
      g_object_unref(navigation);
      if (i % 10 == 0) fed.wait_for_a_frame();
    }
    stop = true;
    for (std::thread &reader : readers) reader.join();
    fed.stop();
    EXPECT_EQ(record.alive, 1) << "the last one";
    g_object_set(fed.get(), "navigation-object", nullptr, nullptr);
  }
  EXPECT_EQ(record.alive, 0);
  EXPECT_FALSE(record.positions.empty());
}

void draw_pen_on(GstElement * /*source*/, GstBuffer *buffer, GstPad * /*pad*/, gpointer /*data*/) {
  draw_pen(buffer, small_info(), Pen{0.5, 0.5, false});
}

// Pipelines with threads and a clock of their own.
TEST(LiveChangesOfNoxPenTracker, TwoPipelinesTellOneNavigationObject) {
  const int frames = repetitions(100, 200);
  const std::string description =
      "fakesrc name=source format=time signal-handoffs=true sizetype=fixed sizemax=" +
      std::to_string(small_info().size) + " num-buffers=" + std::to_string(frames) +
      " ! video/x-raw,format=I420,width=64,height=36,framerate=30/1 ! noxpentracker name=tracker ! "
      "queue ! fakesink";
  NavigationRecord record;
  GObject *navigation = fake_navigation_new(&record);
  const auto run = [&] {
    const auto prepare = [&](GstElement *pipeline) {
      const ObjectPtr<GstElement> source(gst_bin_get_by_name(GST_BIN(pipeline), "source"));
      g_signal_connect(source.get(), "handoff", G_CALLBACK(draw_pen_on), nullptr);
      set_navigation(pipeline, navigation);
    };
    const auto tidy = [](GstElement *pipeline) { set_navigation(pipeline, nullptr); };
    EXPECT_EQ(run_pipeline(description, prepare, tidy), "");
  };
  std::thread other(run);
  run();
  other.join();
  EXPECT_EQ(record.positions.size(), static_cast<std::size_t>(2 * frames));
  EXPECT_EQ(navigation->ref_count, 1U);
  g_object_unref(navigation);
}

}  // namespace
}  // namespace nox::test
