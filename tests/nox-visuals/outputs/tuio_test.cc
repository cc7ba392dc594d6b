#include "nox-visuals/outputs/tuio.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include "nox-visuals/support/osc_text.h"
#include "nox-visuals/support/recorded.h"
#include "nox-visuals/support/sockets.h"

namespace nox::app {
namespace {

using recorded::loss;
using recorded::pen;
using test::UdpReceiver;
using Lines = std::vector<std::string>;

constexpr std::int64_t kSecond = 1'000'000'000;
// 2026-01-31T10:00:00.533Z: modulo 2^31 these are 165,206,549 milliseconds.
constexpr std::int64_t kStartUs = 1'769'853'600'533'000;
constexpr std::int32_t kFirstFrame = 1'769'853'600'533 % (std::int64_t{1} << 31);
constexpr std::int32_t kFirstSession = 1'769'853'600;

std::string fseq(int after_first) {
  return "/tuio/2Dcur ,si fseq " + std::to_string(kFirstFrame + after_first);
}

class TuioTest : public testing::Test {
 protected:
  Lines next() {
    const auto packet = receiver_.receive();
    return packet ? test::osc_text(*packet) : Lines{};
  }
  bool nothing_more() { return !receiver_.receive(std::chrono::milliseconds(0)); }

  static Lines empty(int after_first) {
    return {"/tuio/2Dcur ,ss source nox-visuals@hall", "/tuio/2Dcur ,s alive", fseq(after_first)};
  }
  static Lines alive(const std::string &session, const std::string &set, int after_first) {
    return {"/tuio/2Dcur ,ss source nox-visuals@hall", "/tuio/2Dcur ,si alive " + session,
            "/tuio/2Dcur ,sifffff set " + session + " " + set, fseq(after_first)};
  }
  static std::string session(int number) { return std::to_string(kFirstSession + number); }

  UdpReceiver receiver_;
  recorded::Sentences sentences_;
};

TEST_F(TuioTest, StartAndEndAreEmptyBundles) {
  {
    Tuio tuio(receiver_.address(), "hall", kStartUs, sentences_.say());
    EXPECT_EQ(next(), empty(0));
    tuio.take(End{});
    EXPECT_EQ(next(), empty(1));
    tuio.tick(5 * kSecond, {});
  }
  EXPECT_TRUE(nothing_more()) << "one end is enough";
}

TEST_F(TuioTest, AStreamThatFailsEndsWithAnEmptyBundleToo) {
  {
    Tuio tuio(receiver_.address(), "hall", kStartUs, sentences_.say());
    tuio.take(pen(0.0, 0.5, 0.5, true));
  }
  EXPECT_EQ(next(), empty(0));
  next();
  EXPECT_EQ(next(), empty(2));
}

TEST_F(TuioTest, AHoveringPenIsNoCursor) {
  Tuio tuio(receiver_.address(), "hall", kStartUs, sentences_.say());
  next();
  tuio.take(pen(0.0, 0.5, 0.5, false));
  EXPECT_TRUE(nothing_more());
}

TEST_F(TuioTest, APressIsACursorWithItsSpeedAndTheChangeOfIt) {
  Tuio tuio(receiver_.address(), "hall", kStartUs, sentences_.say());
  next();
  tuio.take(pen(0.0, 0.25, 0.5, true));
  EXPECT_EQ(next(), alive(session(0), "0.25 0.5 0 0 0", 1));
  // 0.3 and 0.4 of the surface a second: a speed of 0.5, reached within half a second.
  tuio.take(pen(0.5, 0.40, 0.7, true));
  EXPECT_EQ(next(), alive(session(0), "0.4 0.7 0.3 0.4 1", 2));
  tuio.take(pen(1.0, 0.40, 0.7, true));
  EXPECT_EQ(next(), alive(session(0), "0.4 0.7 0 0 -1", 3));
  tuio.take(pen(1.5, 0.40, 0.7, false));
  EXPECT_EQ(next(), empty(4));
}

TEST_F(TuioTest, ALossEndsTheCursor) {
  Tuio tuio(receiver_.address(), "hall", kStartUs, sentences_.say());
  next();
  tuio.take(pen(0.0, 0.25, 0.5, true));
  next();
  tuio.take(loss(0.1, true));
  EXPECT_EQ(next(), empty(2));
  tuio.take(pen(0.2, 0.25, 0.5, false));
  tuio.take(loss(0.3, false));
  EXPECT_TRUE(nothing_more());
}

TEST_F(TuioTest, EachPressHasAnIdThatNoOtherHad) {
  Tuio tuio(receiver_.address(), "hall", kStartUs, sentences_.say());
  next();
  std::set<std::string> seen;
  for (int stroke = 1; stroke <= 100; ++stroke) {
    tuio.take(pen(stroke, 0.5, 0.5, true, static_cast<std::uint64_t>(stroke)));
    EXPECT_TRUE(seen.insert(next()[1]).second);
    if (stroke % 2 == 0) continue;  // the release was never seen
    tuio.take(pen(stroke + 0.5, 0.5, 0.5, false, static_cast<std::uint64_t>(stroke)));
    next();
  }
  EXPECT_EQ(seen.size(), 100U);
}

TEST_F(TuioTest, TheStateComesAgainEverySecond) {
  Tuio tuio(receiver_.address(), "hall", kStartUs, sentences_.say());
  next();
  int bundles = 0;
  for (std::int64_t now = 0; now <= 10 * kSecond; now += kSecond / 10) {
    tuio.tick(100 * kSecond + now, {});
    if (!nothing_more()) ++bundles;
  }
  EXPECT_EQ(bundles, 10);
  tuio.take(pen(11, 0.5, 0.25, true));
  const Lines sent = next();
  tuio.tick(111 * kSecond, {});
  const Lines again = next();
  ASSERT_EQ(again.size(), 4U);
  EXPECT_EQ(Lines(again.begin(), again.end() - 1), Lines(sent.begin(), sent.end() - 1));
  EXPECT_EQ(again.back(), fseq(12));
}

TEST_F(TuioTest, NumbersGoFromTheLargestToOne) {
  // 2^31 - 1 milliseconds, and one more.
  Tuio tuio(receiver_.address(), "hall", ((std::int64_t{1} << 31) - 1) * 1000, sentences_.say());
  EXPECT_EQ(next().back(), "/tuio/2Dcur ,si fseq 2147483647");
  tuio.take(End{});
  EXPECT_EQ(next().back(), "/tuio/2Dcur ,si fseq 1");
  const Tuio zero(receiver_.address(), "hall", (std::int64_t{1} << 31) * 1000, sentences_.say());
  EXPECT_EQ(next().back(), "/tuio/2Dcur ,si fseq 1");
}

}  // namespace
}  // namespace nox::app
