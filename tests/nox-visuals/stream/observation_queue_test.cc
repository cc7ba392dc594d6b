#include "nox-visuals/stream/observation_queue.h"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace {

using nox::app::Code;
using nox::app::End;
using nox::app::Loss;
using nox::app::Observation;
using nox::app::ObservationQueue;
using nox::app::Pen;
using nox::app::WhenFull;
using std::chrono::milliseconds;

Pen pen(std::int64_t pts, bool pressed) {
  return {{pts, {}, 0}, {}, pressed, {}, 0};
}

// A word for each observation: h3 and p3 are pens hovering and pressed at 3, the others l, c and e.
std::string word(const Observation &observation) {
  if (const auto *it = std::get_if<Pen>(&observation)) {
    return (it->pressed ? "p" : "h") + std::to_string(*it->when.pts_ns);
  }
  if (std::holds_alternative<Loss>(observation)) return "l";
  return std::holds_alternative<Code>(observation) ? "c" : "e";
}

std::vector<std::string> all(ObservationQueue *queue) {
  std::vector<std::string> words;
  while (const auto it = queue->pop(milliseconds(0))) words.push_back(word(*it));
  return words;
}

TEST(ObservationQueue, KeepsTheOrder) {
  ObservationQueue queue(10);
  for (const bool pressed : {false, true, false}) queue.push(pen(1, pressed));
  queue.push(End{});
  EXPECT_EQ(all(&queue), (std::vector<std::string>{"h1", "p1", "h1", "e"}));
  EXPECT_EQ(queue.dropped(), 0U);
}

TEST(ObservationQueue, OfALiveStreamTheOldestPositionGoes) {
  ObservationQueue queue(4);
  queue.set_when_full(WhenFull::kDropOldest);
  for (int i = 0; i < 10; ++i) queue.push(pen(i, false));
  EXPECT_EQ(all(&queue), (std::vector<std::string>{"h0", "h7", "h8", "h9"}));
  EXPECT_EQ(queue.dropped(), 6U);
}

TEST(ObservationQueue, WhatChangesSomethingNeverGoes) {
  ObservationQueue queue(2);
  queue.set_when_full(WhenFull::kDropOldest);
  queue.push(pen(0, false));
  queue.push(pen(1, false));
  queue.push(Code{});
  queue.push(pen(2, true));
  queue.push(pen(3, true));
  queue.push(pen(4, false));
  queue.push(Loss{});
  queue.push(pen(5, false));
  queue.push(pen(6, false));
  queue.push(End{});
  EXPECT_EQ(all(&queue), (std::vector<std::string>{"h0", "c", "p2", "h4", "l", "h5", "e"}));
  EXPECT_EQ(queue.dropped(), 3U);
}

TEST(ObservationQueue, OfAFileNothingGoes) {
  ObservationQueue queue(2);
  std::vector<std::string> words;
  std::thread reader([&] {
    while (words.empty() || words.back() != "e") {
      std::this_thread::sleep_for(milliseconds(1));
      if (const auto it = queue.pop(milliseconds(1000))) words.push_back(word(*it));
    }
  });
  for (int i = 0; i < 50; ++i) queue.push(pen(i, false));
  queue.push(End{});
  reader.join();
  EXPECT_EQ(words.size(), 51U);
  EXPECT_EQ(queue.dropped(), 0U);
}

TEST(ObservationQueue, AStreamThatNoLongerWaitsDrops) {
  ObservationQueue queue(2);
  queue.push(pen(0, false));
  queue.push(pen(1, false));
  std::thread writer([&] { queue.push(pen(2, false)); });
  queue.set_when_full(WhenFull::kDropOldest);
  writer.join();
  EXPECT_EQ(all(&queue), (std::vector<std::string>{"h0", "h2"}));
  EXPECT_EQ(queue.dropped(), 1U);
}

TEST(ObservationQueue, ClosingEndsTheWait) {
  ObservationQueue queue(1);
  queue.push(pen(0, false));
  std::thread writer([&] { queue.push(pen(1, false)); });
  queue.close();
  writer.join();
  EXPECT_EQ(all(&queue), (std::vector<std::string>{"h0"}));
}

}  // namespace
