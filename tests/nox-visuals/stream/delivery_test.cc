#include "nox-visuals/stream/delivery.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <utility>
#include <vector>

namespace {

using nox::app::Counts;
using nox::app::Delivery;
using nox::app::End;
using nox::app::Loss;
using nox::app::Observation;
using nox::app::ObservationQueue;
using nox::app::Output;
using nox::app::Pen;
using nox::app::Step;
using nox::app::Totals;

// What the other side of an output saw.
struct Record {
  std::vector<Observation> taken;
  std::atomic<int> ticks = 0;
  int drained_after = -1;  // how many observations
};

class RecordingOutput final : public Output {
 public:
  RecordingOutput(Record *record, bool broken) : record_(record), broken_(broken) {}

  void take(const Observation &observation) override { record_->taken.push_back(observation); }
  void tick(std::int64_t /*now_ns*/, const Totals & /*totals*/) override { ++record_->ticks; }
  void drain() override { record_->drained_after = static_cast<int>(record_->taken.size()); }
  std::uint64_t undelivered() const override { return 5; }
  bool broken() const override { return broken_; }

 private:
  Record *record_;
  bool broken_;
};

// Each loss becomes two.
class DoublingStep final : public Step {
 public:
  void take(const Observation &in, std::vector<Observation> *out) override {
    out->push_back(in);
    if (std::holds_alternative<Loss>(in)) out->push_back(in);
  }
};

class DeliveryTest : public testing::Test {
 protected:
  std::unique_ptr<Delivery> deliver(int steps, std::vector<bool> broken) {
    std::vector<std::unique_ptr<Step>> all_steps;
    for (int i = 0; i < steps; ++i) all_steps.push_back(std::make_unique<DoublingStep>());
    std::vector<std::unique_ptr<Output>> outputs;
    for (std::size_t i = 0; i < broken.size(); ++i) {
      outputs.push_back(std::make_unique<RecordingOutput>(&records_[i], broken[i]));
    }
    return std::make_unique<Delivery>(&queue_, std::move(all_steps), std::move(outputs), &counts_,
                                      [this] { ++gave_up_; });
  }

  Counts counts_;
  ObservationQueue queue_{10};
  Record records_[2];
  std::atomic<int> gave_up_ = 0;
};

TEST_F(DeliveryTest, EverythingGoesThroughTheStepsToEveryOutput) {
  const auto delivery = deliver(2, {false, false});
  queue_.push(Pen{});
  queue_.push(Loss{});
  delivery->finish({});
  for (const Record &record : records_) {
    ASSERT_EQ(record.taken.size(), 6U);
    EXPECT_TRUE(std::holds_alternative<Pen>(record.taken[0]));
    for (int i = 1; i < 5; ++i) EXPECT_TRUE(std::holds_alternative<Loss>(record.taken[i]));
    EXPECT_TRUE(std::holds_alternative<End>(record.taken[5]));
    EXPECT_EQ(record.drained_after, 5);
  }
}

TEST_F(DeliveryTest, TheEndHasTheCounts) {
  counts_.frames = 7;
  counts_.losses = 2;
  const auto delivery = deliver(0, {false, false});
  delivery->finish({});
  const Totals totals = std::get<End>(records_[0].taken.back()).totals;
  EXPECT_EQ(totals.frames, 7U);
  EXPECT_EQ(totals.losses, 2U);
  EXPECT_EQ(totals.undelivered, 10U);
}

TEST_F(DeliveryTest, TicksComeWhileNothingHappens) {
  const auto delivery = deliver(0, {false});
  while (records_[0].ticks < 3) std::this_thread::yield();
  delivery->finish({});
  EXPECT_EQ(records_[0].taken.size(), 1U);
}

TEST_F(DeliveryTest, OneBrokenOutputLeavesTheOther) {
  const auto delivery = deliver(0, {true, false});
  while (records_[1].ticks < 3) std::this_thread::yield();
  EXPECT_EQ(gave_up_, 0);
  EXPECT_TRUE(delivery->output_broken());
}

TEST_F(DeliveryTest, WithoutAnyOutputItGivesUpOnce) {
  const auto delivery = deliver(0, {true, true});
  while (records_[1].ticks < 3) std::this_thread::yield();
  EXPECT_EQ(gave_up_, 1);
}

}  // namespace
