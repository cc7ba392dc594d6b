// Readers in a thread of their own, with readers that wait until the test lets them go on.
#include "nox-visuals/readers/background_reader.h"

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace nox::test {
namespace {

using app::BackgroundReader;
using app::Code;
using app::Moment;
using app::Reader;

// A pair of counts that threads wait for.
class Gate {
 public:
  void enter() {
    std::unique_lock lock(mutex_);
    ++entered_;
    changed_.notify_all();
    changed_.wait(lock, [this] { return allowed_ >= entered_; });
  }
  void wait_for_entry(int count) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this, count] { return entered_ >= count; });
  }
  void allow(int count) {
    const std::lock_guard lock(mutex_);
    allowed_ = count;
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int entered_ = 0;
  int allowed_ = 0;
};

Code code_of(const std::string &bytes) {
  Code code;
  code.bytes = bytes;
  code.corners = {{{0, 0}, {9, 0}, {9, 9}, {0, 9}}};
  return code;
}

// Reads the picture's first sample, as a number, and its size.
class SampleReader : public Reader {
 public:
  explicit SampleReader(Gate *gate, std::string reader = "slow")
      : gate_(gate), reader_(std::move(reader)) {}

  std::vector<Code> read(const qr::Luma &picture) override {
    if (gate_ != nullptr) gate_->enter();
    Code code = code_of(std::to_string(picture.samples[0]));
    code.size = picture.width * picture.height;
    code.reader = reader_;
    return {code};
  }

 private:
  Gate *gate_;
  std::string reader_;
};

// What was found; looked at when the thread has ended.
struct Found {
  std::vector<Code> codes;
  std::vector<bool> first;
  void operator()(Code code, bool is_first) {
    codes.push_back(std::move(code));
    first.push_back(is_first);
  }
};

template <typename... Made>
std::vector<std::unique_ptr<Reader>> readers(Made... made) {
  std::vector<std::unique_ptr<Reader>> all;
  (all.push_back(std::move(made)), ...);
  return all;
}

Moment moment(std::int64_t ns) {
  Moment when;
  when.pts_ns = ns;
  return when;
}

void offer(BackgroundReader *background, std::uint8_t sample, std::vector<Code> seen = {}) {
  const std::vector<std::uint8_t> samples(12, sample);
  background->offer(moment(sample), {samples.data(), 6, 5, 2}, std::move(seen));
}

TEST(BackgroundReader, GivesCodesTheMomentOfTheirFrame) {
  Found found;
  BackgroundReader background(readers(std::make_unique<SampleReader>(nullptr)), std::ref(found));
  offer(&background, 7);
  background.finish();
  ASSERT_EQ(found.codes.size(), 1U);
  EXPECT_EQ(found.codes[0].bytes, "7");
  EXPECT_EQ(found.codes[0].when.pts_ns, 7);
  EXPECT_EQ(found.codes[0].size, 10);
  EXPECT_TRUE(found.first[0]);
}

TEST(BackgroundReader, TakesTheNewestFrameAndNeverWaits) {
  Gate gate;
  Found found;
  BackgroundReader background(readers(std::make_unique<SampleReader>(&gate)), std::ref(found));
  offer(&background, 1);
  gate.wait_for_entry(1);
  for (std::uint8_t sample = 2; sample <= 50; ++sample) offer(&background, sample);
  gate.allow(2);
  background.finish();
  ASSERT_EQ(found.codes.size(), 2U);
  EXPECT_EQ(found.codes[0].bytes, "1");
  EXPECT_EQ(found.codes[1].bytes, "50");
}

TEST(BackgroundReader, SaysNothingThatWasSeen) {
  Found found;
  BackgroundReader background(readers(std::make_unique<SampleReader>(nullptr, "first"),
                                      std::make_unique<SampleReader>(nullptr, "second")),
                              std::ref(found));
  offer(&background, 7, {code_of("7")});
  background.finish();
  EXPECT_TRUE(found.codes.empty());
}

TEST(BackgroundReader, SaysACodeOnceForAllReaders) {
  Found found;
  BackgroundReader background(readers(std::make_unique<SampleReader>(nullptr, "first"),
                                      std::make_unique<SampleReader>(nullptr, "second")),
                              std::ref(found));
  offer(&background, 7, {code_of("another")});
  background.finish();
  ASSERT_EQ(found.codes.size(), 1U);
  EXPECT_EQ(found.codes[0].reader, "first");
  EXPECT_FALSE(found.first[0]);
}

TEST(BackgroundReader, EndsWithoutAFrame) {
  Found found;
  BackgroundReader background(readers(std::make_unique<SampleReader>(nullptr)), std::ref(found));
  background.finish();
  background.finish();
  EXPECT_TRUE(found.codes.empty());
}

}  // namespace
}  // namespace nox::test
