// With receivers that we did not write: liblo's oscdump, and a TUIO client from npm.
#include <gtest/gtest.h>

#include <string>

#include "nox-visuals/outputs/osc.h"
#include "nox-visuals/outputs/tuio.h"
#include "nox-visuals/support/child_process.h"
#include "nox-visuals/support/recorded.h"
#include "nox-visuals/support/sockets.h"

namespace nox::app {
namespace {

using recorded::loss;
using recorded::pen;
using std::chrono::milliseconds;
using test::ChildProcess;

constexpr std::int64_t kStartUs = 1'769'853'600'533'000;
constexpr int kFirstSession = 1'769'853'600;

TEST(ReceiversTest, OscdumpReadsWhatOscSends) {
  const std::uint16_t port = test::free_udp_port();
  ChildProcess oscdump({NOX_OSCDUMP, "-L", std::to_string(port)});
  recorded::Sentences sentences;
  Osc osc({"127.0.0.1", port}, "hall", sentences.say());
  // It does not say when it listens.
  for (int i = 0; i < 100 && !oscdump.wait_for("/nox/hall/pen", milliseconds(100)); ++i) {
    osc.take(pen(0.0, 0.25, 0.75, true));
  }
  osc.take(loss(0.1, true));
  EXPECT_TRUE(oscdump.wait_for("/nox/hall/pen ffi 0.250000 0.750000 1"));
  EXPECT_TRUE(oscdump.wait_for("/nox/hall/x f 0.250000"));
  EXPECT_TRUE(oscdump.wait_for("/nox/hall/y f 0.750000"));
  EXPECT_TRUE(oscdump.wait_for("/nox/hall/pressed i 1"));
  EXPECT_TRUE(oscdump.wait_for("/nox/hall/lost"));
  EXPECT_TRUE(oscdump.wait_for("/nox/hall/pressed i 0")) << oscdump.output();
}

TEST(ReceiversTest, OscdumpReadsTheBundlesOfTuio) {
  const std::uint16_t port = test::free_udp_port();
  ChildProcess oscdump({NOX_OSCDUMP, "-L", std::to_string(port)});
  recorded::Sentences sentences;
  Tuio tuio({"127.0.0.1", port}, "hall", kStartUs, sentences.say());
  for (int i = 0; i < 100 && !oscdump.wait_for("set", milliseconds(100)); ++i) {
    tuio.take(pen(0.0, 0.25, 0.75, true));
  }
  const std::string session = std::to_string(kFirstSession);
  EXPECT_TRUE(oscdump.wait_for("/tuio/2Dcur ss \"source\" \"nox-visuals@hall\""));
  EXPECT_TRUE(oscdump.wait_for("/tuio/2Dcur si \"alive\" " + session));
  EXPECT_TRUE(oscdump.wait_for("/tuio/2Dcur sifffff \"set\" " + session +
                               " 0.250000 0.750000 0.000000 0.000000 0.000000"))
      << oscdump.output();
}

class TuioClientTest : public testing::Test {
 protected:
  void SetUp() override {
    ChildProcess fetch({NOX_RECEIVERS "/fetch", NOX_RECEIVERS_FOLDER});
    const int status = fetch.wait();
    if (status == 77) GTEST_SKIP() << fetch.output();
    ASSERT_EQ(status, 0) << fetch.output();
  }

  void start_client(ChildProcess *client) {
    ASSERT_TRUE(client->wait_for("ready", milliseconds(60'000))) << client->output();
  }

  std::vector<std::string> command() const {
    return {"node", NOX_RECEIVERS "/tuio_receiver.mjs", NOX_RECEIVERS_FOLDER,
            std::to_string(port_)};
  }

  static std::string line(const char *what, int session, const char *at) {
    return std::string(what) + " " + std::to_string(kFirstSession + session) + " " + at + "\n";
  }

  const std::uint16_t port_ = test::free_udp_port();
  recorded::Sentences sentences_;
};

TEST_F(TuioClientTest, SeesEachPressAsACursorOfItsOwn) {
  ChildProcess client(command());
  start_client(&client);
  Tuio tuio({"127.0.0.1", port_}, "hall", kStartUs, sentences_.say());
  tuio.take(pen(0.0, 0.10, 0.10, false, 1));
  tuio.take(pen(0.1, 0.25, 0.50, true, 1));
  tuio.take(pen(0.2, 0.30, 0.60, true, 1));
  tuio.take(pen(0.3, 0.30, 0.60, false, 2));
  tuio.take(pen(0.4, 0.75, 0.25, true, 2));
  tuio.take(loss(0.5, true));
  tuio.take(End{});
  EXPECT_TRUE(client.wait_for(line("remove", 1, "0.7500 0.2500") + "refresh\nrefresh\n"))
      << client.output();
  std::string cursors;
  for (std::size_t at = 0, end = 0; (end = client.output().find('\n', at)) != std::string::npos;
       at = end + 1) {
    const std::string it = client.output().substr(at, end + 1 - at);
    if (it != "refresh\n" && it != "ready\n") cursors += it;
  }
  EXPECT_EQ(cursors, line("add", 0, "0.2500 0.5000") + line("update", 0, "0.3000 0.6000") +
                         line("remove", 0, "0.3000 0.6000") + line("add", 1, "0.7500 0.2500") +
                         line("remove", 1, "0.7500 0.2500"));
}

// A program that died left a cursor; the next one's numbers are above its own, and its first bundle
// ends what is left.
TEST_F(TuioClientTest, GoesOnAfterARestart) {
  ChildProcess client(command());
  start_client(&client);
  {
    Tuio first({"127.0.0.1", port_}, "hall", kStartUs, sentences_.say());
    for (int i = 0; i < 600; ++i) first.take(pen(i / 60.0, 0.25, 0.50, true, 1));
  }
  // Ten seconds of 60 frames later.
  Tuio second({"127.0.0.1", port_}, "hall", kStartUs + 10'000'000, sentences_.say());
  // So many at once may fill the receiver's buffer; what it then drops comes again.
  const std::string added = line("add", 10, "0.7500 0.2500");
  for (int i = 0; i < 100 && !client.wait_for(added, milliseconds(100)); ++i) {
    second.take(pen(i / 60.0, 0.75, 0.25, true, 1));
  }
  EXPECT_TRUE(client.wait_for(added));
  EXPECT_TRUE(client.wait_for(line("remove", 0, "0.2500 0.5000")));
}

}  // namespace
}  // namespace nox::app
