#include "nox-visuals/outputs/background.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace {

using nox::app::Background;
using nox::app::End;
using nox::app::Observation;
using nox::app::Output;
using nox::app::Pen;

// The other side: takes nothing until it is opened.
class Gate {
 public:
  void open() {
    const std::lock_guard lock(mutex_);
    open_ = true;
    changed_.notify_all();
  }
  void pass() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return open_; });
    ++passed_;
  }
  int passed() {
    const std::lock_guard lock(mutex_);
    return passed_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool open_ = false;
  int passed_ = 0;
};

class GatedOutput final : public Output {
 public:
  explicit GatedOutput(std::shared_ptr<Gate> gate) : gate_(std::move(gate)) {}
  void take(const Observation & /*observation*/) override { gate_->pass(); }
  bool broken() const override { return gate_->passed() >= 3; }

 private:
  std::shared_ptr<Gate> gate_;
};

TEST(Background, AStoppedReaderHoldsNobodyUp) {
  const auto gate = std::make_shared<Gate>();
  {
    Background output(std::make_unique<GatedOutput>(gate), "the gate");
    for (int i = 0; i < 3000; ++i) output.take(Pen{});
    // One is with the reader, 1,000 wait, the others are gone.
    EXPECT_GE(output.undelivered(), 1998U);
    gate->open();
    output.drain();
    output.take(End{});
  }
  EXPECT_GE(gate->passed(), 1001);
  EXPECT_LE(gate->passed(), 1003);
}

TEST(Background, TellsWhatItsOutputTells) {
  const auto gate = std::make_shared<Gate>();
  gate->open();
  Background output(std::make_unique<GatedOutput>(gate), "the gate");
  EXPECT_FALSE(output.broken());
  for (int i = 0; i < 2; ++i) output.take(Pen{});
  output.take(End{});
  output.drain();
  EXPECT_TRUE(output.broken());
  EXPECT_EQ(output.undelivered(), 0U);
}

TEST(Background, LeavesAReaderThatNeverReads) {
  const auto gate = std::make_shared<Gate>();
  auto output = std::make_unique<Background>(std::make_unique<GatedOutput>(gate), "the gate");
  output->take(End{});
  output.reset();
  EXPECT_EQ(gate->passed(), 0);
  gate->open();
}

}  // namespace
