// A thousand elements at once: side by side, in a row, and coming and going on several threads.
#include <gst/gst.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "noxvisuals/every_element.h"
#include "support/pad_line.h"
#include "support/repetitions.h"

namespace nox::test {
namespace {

const int kElements = repetitions(1000, 1000);
constexpr int kThreads = 4;

// An element that plays, with pads of its own around it.
class PlayingElement {
 public:
  explicit PlayingElement(const char *name)
      : element_(new_element(name)), line_(element_.get(), small_info()) {
    gst_element_set_state(element_.get(), GST_STATE_PLAYING);
  }
  ~PlayingElement() { gst_element_set_state(element_.get(), GST_STATE_NULL); }
  PlayingElement(const PlayingElement &) = delete;
  PlayingElement &operator=(const PlayingElement &) = delete;

  PadLine &line() { return line_; }

 private:
  ObjectPtr<GstElement> element_;
  PadLine line_;
};

template <typename Work>
void on_several_threads(Work work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) threads.emplace_back(work, i);
  for (std::thread &thread : threads) thread.join();
}

using ManyElements = ForEachElement;

// All of them are made, then all of them work, then all of them go, each time by several threads;
// an element is made, fed and dropped by different ones.
TEST_P(ManyElements, WorkSideBySide) {
  std::vector<std::unique_ptr<PlayingElement>> elements(static_cast<std::size_t>(kElements));
  on_several_threads([&](int thread) {
    for (int i = thread; i < kElements; i += kThreads) {
      elements[static_cast<std::size_t>(i)] = std::make_unique<PlayingElement>(GetParam());
    }
  });
  std::atomic<int> failed{0};
  on_several_threads([&](int thread) {
    for (int i = (thread + 1) % kThreads; i < kElements; i += kThreads) {
      PadLine &line = elements[static_cast<std::size_t>(i)]->line();
      if (line.push(new_small_frame()) != GST_FLOW_OK || line.received() != 1) ++failed;
    }
  });
  EXPECT_EQ(failed, 0);
  on_several_threads([&](int thread) {
    for (int i = (thread + 2) % kThreads; i < kElements; i += kThreads) {
      elements[static_cast<std::size_t>(i)].reset();
    }
  });
}

TEST_P(ManyElements, WorkInARow) {
  std::vector<ObjectPtr<GstElement>> elements;
  for (int i = 0; i < kElements; ++i) {
    elements.push_back(new_element(GetParam()));
    if (i > 0) {
      ASSERT_TRUE(gst_element_link_pads_full(elements[static_cast<std::size_t>(i - 1)].get(), "src",
                                             elements.back().get(), "sink",
                                             GST_PAD_LINK_CHECK_NOTHING));
    }
    gst_element_set_state(elements.back().get(), GST_STATE_PLAYING);
  }
  PadLine line(elements.front().get(), elements.back().get(), small_info());
  EXPECT_EQ(line.push(new_small_frame()), GST_FLOW_OK);
  EXPECT_EQ(line.received(), 1);
  for (const ObjectPtr<GstElement> &element : elements) {
    gst_element_set_state(element.get(), GST_STATE_NULL);
  }
}

TEST_P(ManyElements, ComeAndGoOnSeveralThreads) {
  std::atomic<int> failed{0};
  on_several_threads([&](int /*thread*/) {
    for (int i = 0; i < kElements / kThreads; ++i) {
      PlayingElement element(GetParam());
      if (element.line().push(new_small_frame()) != GST_FLOW_OK) ++failed;
    }
  });
  EXPECT_EQ(failed, 0);
}

INSTANTIATE_TEST_SUITE_P(Elements, ManyElements, testing::ValuesIn(kElementNames), element_name);

}  // namespace
}  // namespace nox::test
