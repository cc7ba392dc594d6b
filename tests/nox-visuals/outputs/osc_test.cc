#include "nox-visuals/outputs/osc.h"

#include <gtest/gtest.h>

#include "nox-visuals/outputs/output_error.h"
#include "nox-visuals/support/osc_text.h"
#include "nox-visuals/support/recorded.h"
#include "nox-visuals/support/sockets.h"

namespace nox::app {
namespace {

using recorded::loss;
using recorded::pen;
using test::UdpReceiver;

class OscTest : public testing::Test {
 protected:
  std::vector<std::string> received(int count) {
    std::vector<std::string> lines;
    for (int i = 0; i < count; ++i) {
      const auto packet = receiver_.receive();
      if (!packet) break;
      const auto text = test::osc_text(*packet);
      EXPECT_EQ(text.size(), 1U) << "simple receivers do not open bundles";
      lines.insert(lines.end(), text.begin(), text.end());
    }
    EXPECT_FALSE(receiver_.receive(std::chrono::milliseconds(0)));
    return lines;
  }

  UdpReceiver receiver_;
  recorded::Sentences sentences_;
  Osc osc_{receiver_.address(), "hall-1", sentences_.say()};
};

TEST_F(OscTest, APenIsOneMessageAndThreeFlatOnes) {
  osc_.take(pen(0.1, 0.25, 0.75, true));
  const std::vector<std::string> expected = {"/nox/hall-1/pen ,ffi 0.25 0.75 1",
                                             "/nox/hall-1/x ,f 0.25", "/nox/hall-1/y ,f 0.75",
                                             "/nox/hall-1/pressed ,i 1"};
  EXPECT_EQ(received(4), expected);
}

TEST_F(OscTest, AHoveringPenIsTold) {
  osc_.take(pen(0.1, 0.5, 0.125, false));
  EXPECT_EQ(received(4).front(), "/nox/hall-1/pen ,ffi 0.5 0.125 0");
}

TEST_F(OscTest, ALossHasNoArguments) {
  osc_.take(loss(0.2, false));
  EXPECT_EQ(received(1), std::vector<std::string>{"/nox/hall-1/lost ,"});
}

TEST_F(OscTest, ALossWhilePressedReleasesTheFlatAddress) {
  osc_.take(loss(0.2, true));
  const std::vector<std::string> expected = {"/nox/hall-1/lost ,", "/nox/hall-1/pressed ,i 0"};
  EXPECT_EQ(received(2), expected);
}

TEST_F(OscTest, CodesAndTheEndAreNotSent) {
  osc_.take(recorded::code(0.1, "x"));
  osc_.take(End{});
  EXPECT_TRUE(received(0).empty());
}

TEST(OscOpenTest, ANameThatDoesNotResolveIsAnErrorThatNamesIt) {
  recorded::Sentences sentences;
  try {
    const Osc osc({"no-such-host.invalid", 9000}, "s", sentences.say());
    FAIL() << "opened";
  } catch (const OutputError &error) {
    EXPECT_NE(std::string(error.what()).find("--osc no-such-host.invalid:9000"), std::string::npos);
  }
}

// The system reports an earlier datagram's refusal with a later call.
TEST(OscOpenTest, NobodyListensIsSaidOnceAndCounted) {
  recorded::Sentences sentences;
  Osc osc({"127.0.0.1", test::free_udp_port()}, "s", sentences.say());
  for (int i = 0; i < 50; ++i) osc.take(pen(i / 30.0, 0.5, 0.5, false));
  osc.drain();
  EXPECT_GT(osc.undelivered(), 100U) << "each refusal comes back before the next datagram or two";
  EXPECT_LE(osc.undelivered(), 200U);
  ASSERT_EQ(sentences.said.size(), 1U);
  EXPECT_NE(sentences.said.front().find("nobody listens"), std::string::npos);
}

}  // namespace
}  // namespace nox::app
