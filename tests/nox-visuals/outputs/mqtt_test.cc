// With real brokers: mosquitto, on free ports of the loopback address, started and stopped by id.
#include "nox-visuals/outputs/mqtt.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <thread>

#include "nox-visuals/outputs/output_error.h"
#include "nox-visuals/support/child_process.h"
#include "nox-visuals/support/recorded.h"
#include "nox-visuals/support/sockets.h"

namespace nox::app {
namespace {

namespace fs = std::filesystem;
using recorded::code;
using recorded::loss;
using recorded::pen;
using std::chrono::milliseconds;
using test::ChildProcess;

constexpr std::int64_t kSecond = 1'000'000'000;

// A broker with its configuration; stop() and start() are what happens to brokers.
class Broker {
 public:
  Broker(const fs::path &folder, const std::string &more,
         std::uint16_t port = test::free_tcp_port())
      : port_(port), file_(folder / ("broker" + std::to_string(port) + ".conf")) {
    // Started by root it would become a user who may not read the passwords.
    std::ofstream(file_) << "user root\nlistener " << port_ << " 127.0.0.1\n" << more;
    start();
  }

  void start() {
    process_ = std::make_unique<ChildProcess>(std::vector<std::string>{NOX_MOSQUITTO, "-c", file_});
    ASSERT_TRUE(process_->wait_for(" running")) << process_->output();
  }
  void stop() { process_.reset(); }

  std::uint16_t port() const { return port_; }

 private:
  std::uint16_t port_;
  fs::path file_;
  std::unique_ptr<ChildProcess> process_;
};

class Subscriber {
 public:
  explicit Subscriber(std::uint16_t port, const std::string &topic = "#")
      : process_({"stdbuf", "-oL", NOX_MOSQUITTO_SUB, "-d", "-h", "127.0.0.1", "-p",
                  std::to_string(port), "-q", "1", "-t", topic, "-F", "<%t %q %r %p>"}) {
    EXPECT_TRUE(process_.wait_for("SUBACK")) << process_.output();
  }

  // Waits for the message; `retained` is what the broker says when it had it before.
  bool got(const std::string &topic, int qos, bool retained, const std::string &payload) {
    return process_.wait_for("<" + topic + " " + std::to_string(qos) + " " +
                             (retained ? "1 " : "0 ") + payload + ">");
  }
  bool soon_has(const std::string &text) { return process_.wait_for(text, milliseconds(10)); }
  bool has(const std::string &text) const {
    return process_.output().find(text) != std::string::npos;
  }
  const std::string &output() const { return process_.output(); }

 private:
  ChildProcess process_;
};

class MqttTest : public testing::Test {
 protected:
  MqttTest() {
    fs::create_directory(folder_);
    fs::permissions(folder_, fs::perms::all);
  }
  ~MqttTest() override { fs::remove_all(folder_); }

  MqttOptions options(std::uint16_t port) const {
    MqttOptions options;
    options.broker.address = {"127.0.0.1", port};
    return options;
  }

  std::unique_ptr<Mqtt> open(const MqttOptions &options) {
    return std::make_unique<Mqtt>(options, "hall", sentences_.say());
  }

  // Ticks until `done`, as the program does.
  bool tick_until(Mqtt *mqtt, const std::function<bool()> &done) {
    for (int i = 0; i < 3000; ++i) {
      if (done()) return true;
      mqtt->tick(ticks_++ * kSecond / 100, {});
      std::this_thread::sleep_for(milliseconds(10));
    }
    return false;
  }
  bool said(const std::string &text) const {
    for (const std::string &sentence : sentences_.said) {
      if (sentence.find(text) != std::string::npos) return true;
    }
    return false;
  }

  static constexpr const char *kAnyone = "allow_anonymous true\n";

  recorded::Sentences sentences_;
  std::int64_t ticks_ = 0;
  const fs::path folder_ = fs::path(testing::TempDir()) / ("mqtt_test." + std::to_string(getpid()));
};

TEST_F(MqttTest, EachObservationHasItsTopicAndQuality) {
  const Broker broker(folder_, kAnyone);
  Subscriber subscriber(broker.port());
  auto mqtt = open(options(broker.port()));
  const Observation hover = pen(0.1, 0.25, 0.5, false);
  const Observation press = pen(0.2, 0.26, 0.5, true);
  const Observation write = pen(0.3, 0.27, 0.5, true);
  const Observation gone = loss(0.4, true);
  const Observation read = code(0.5, "hello");
  for (const Observation &it : {hover, press, write, gone, read}) mqtt->take(it);
  EXPECT_TRUE(subscriber.got("nox/hall/status", 1, false, "online"));
  EXPECT_TRUE(subscriber.got("nox/hall/pen", 0, false, to_json(hover, "hall")));
  EXPECT_TRUE(subscriber.got("nox/hall/pen", 0, false, to_json(press, "hall")));
  EXPECT_TRUE(subscriber.got("nox/hall/press", 1, false, to_json(press, "hall")));
  EXPECT_TRUE(subscriber.got("nox/hall/pen", 0, false, to_json(write, "hall")));
  EXPECT_TRUE(subscriber.got("nox/hall/pen", 0, false, to_json(gone, "hall")));
  EXPECT_TRUE(subscriber.got("nox/hall/press", 1, false, to_json(gone, "hall")));
  EXPECT_TRUE(subscriber.got("nox/hall/code", 1, false, to_json(read, "hall")));
  EXPECT_FALSE(subscriber.has("press 1 0 " + to_json(write, "hall"))) << "it was pressed before";
  EXPECT_FALSE(subscriber.has("press 1 0 " + to_json(hover, "hall")));
  mqtt->drain();
  EXPECT_EQ(mqtt->undelivered(), 0U);
  EXPECT_TRUE(sentences_.said.empty()) << sentences_.said.front();
}

TEST_F(MqttTest, APrefixAndStatisticsEveryFiveSeconds) {
  const Broker broker(folder_, kAnyone);
  MqttOptions with = options(broker.port());
  with.prefix = "house/1";
  auto mqtt = open(with);
  // Frames of this recording come to the element 77 s after the clock of ticks began.
  mqtt->take(code(0.0, "x"));
  Totals totals;
  for (std::int64_t second = 1; second <= 12; ++second) {
    totals.frames = static_cast<std::uint64_t>(second);
    mqtt->tick((77 + second) * kSecond, totals);
    mqtt->drain();
  }
  Subscriber late(broker.port());
  EXPECT_TRUE(late.got("house/1/hall/status", 1, true, "online")) << "retained";
  End expected;
  expected.totals.frames = 11;  // at once, then after 5 and 10 s
  expected.when.unix_us = 1'769'853'611'000'000;
  EXPECT_TRUE(late.got("house/1/hall/stats", 1, true, to_json(expected, "hall"))) << late.output();
}

TEST_F(MqttTest, TheEndIsTheLastStatisticsAndOffline) {
  const Broker broker(folder_, kAnyone);
  Subscriber subscriber(broker.port());
  const Observation end = End{recorded::at(15), {.frames = 450, .found = 447, .losses = 1}};
  auto mqtt = open(options(broker.port()));
  mqtt->drain();
  mqtt->take(end);
  mqtt.reset();
  EXPECT_TRUE(subscriber.got("nox/hall/stats", 1, false, to_json(end, "hall")));
  EXPECT_TRUE(subscriber.got("nox/hall/status", 1, false, "offline"));
  Subscriber late(broker.port());
  EXPECT_TRUE(late.got("nox/hall/stats", 1, true, to_json(end, "hall")));
  EXPECT_TRUE(late.got("nox/hall/status", 1, true, "offline"));
}

TEST_F(MqttTest, TheWillSaysOfflineWhenTheProgramDies) {
  const Broker broker(folder_, kAnyone);
  Subscriber subscriber(broker.port());
  const pid_t child = fork();
  if (child == 0) {
    recorded::Sentences unheard;
    const Mqtt mqtt(options(broker.port()), "hall", unheard.say());
    _exit(0);  // no destructor: the system closes the socket
  }
  EXPECT_TRUE(subscriber.got("nox/hall/status", 1, false, "offline")) << subscriber.output();
}

TEST_F(MqttTest, ABrokerThatComesLateGetsWhatWaited) {
  const std::uint16_t port = test::free_tcp_port();
  auto mqtt = open(options(port));
  ASSERT_EQ(sentences_.said.size(), 1U) << "said once";
  EXPECT_TRUE(said("trying again"));
  const Observation press = pen(0.2, 0.26, 0.5, true);
  mqtt->take(press);
  mqtt->take(code(0.3, "early"));
  EXPECT_EQ(mqtt->undelivered(), 1U) << "a position is of no use later";
  const Broker broker(folder_, kAnyone, port);
  Subscriber subscriber(port);
  EXPECT_TRUE(tick_until(mqtt.get(), [&] { return said("connected"); }));
  EXPECT_TRUE(subscriber.got("nox/hall/status", 1, false, "online"));
  EXPECT_TRUE(subscriber.got("nox/hall/press", 1, false, to_json(press, "hall")));
  EXPECT_TRUE(subscriber.got("nox/hall/code", 1, false, to_json(code(0.3, "early"), "hall")));
  mqtt->drain();
  EXPECT_EQ(mqtt->undelivered(), 1U);
  EXPECT_EQ(sentences_.said.size(), 2U);
}

TEST_F(MqttTest, AThousandWaitAndTheOldestGoFirst) {
  const std::uint16_t port = test::free_tcp_port();
  auto mqtt = open(options(port));
  for (int i = 0; i < 1500; ++i) mqtt->take(code(i, "code " + std::to_string(i)));
  EXPECT_EQ(mqtt->undelivered(), 500U);
  const Broker broker(folder_, kAnyone, port);
  Subscriber subscriber(port, "nox/hall/code");
  ASSERT_TRUE(tick_until(mqtt.get(), [&] { return said("connected"); }));
  EXPECT_TRUE(tick_until(mqtt.get(), [&] { return subscriber.soon_has("\"code 1499\""); }));
  mqtt->drain();
  EXPECT_EQ(mqtt->undelivered(), 500U);
  for (int i = 500; i < 1500; ++i) {
    EXPECT_TRUE(subscriber.has("\"code " + std::to_string(i) + "\""));
  }
  EXPECT_FALSE(subscriber.has("\"code 499\""));
}

TEST_F(MqttTest, WhatIsLeftWhenNobodyCameIsCounted) {
  auto mqtt = open(options(test::free_tcp_port()));
  for (int i = 0; i < 10; ++i) mqtt->take(code(i, "x"));
  EXPECT_EQ(mqtt->undelivered(), 0U);
  const auto before = std::chrono::steady_clock::now();
  mqtt->drain();
  EXPECT_EQ(mqtt->undelivered(), 10U);
  mqtt.reset();
  EXPECT_LT(std::chrono::steady_clock::now() - before, milliseconds(4500));
}

// Two sites: the program speaks to its own broker, which hands everything on to the central one.
TEST_F(MqttTest, BridgedBrokersThatComeAndGoLoseNoCode) {
  Broker central(folder_, kAnyone);
  Broker site(folder_, std::string(kAnyone) + "connection central\naddress 127.0.0.1:" +
                           std::to_string(central.port()) +
                           "\ntopic # out 1\nrestart_timeout 1\nbridge_protocol_version mqttv311\n"
                           "persistence true\nautosave_interval 1\nautosave_on_changes true\n"
                           "persistence_location " +
                           folder_.string() + "/\n");
  Subscriber subscriber(central.port(), "nox/hall/code");
  auto mqtt = open(options(site.port()));
  int next = 0;
  const auto show_codes = [&](int count) {
    for (const int last = next + count; next < last; ++next) {
      mqtt->take(code(next, "code " + std::to_string(next)));
      std::this_thread::sleep_for(milliseconds(2));
    }
  };
  show_codes(100);
  EXPECT_TRUE(subscriber.got("nox/hall/code", 1, false, to_json(code(99, "code 99"), "hall")));
  site.stop();
  show_codes(100);
  site.start();
  EXPECT_TRUE(tick_until(mqtt.get(), [&] { return said("connected"); }));
  show_codes(100);
  EXPECT_TRUE(tick_until(mqtt.get(), [&] { return subscriber.soon_has("\"code 299\""); }));
  mqtt->drain();
  EXPECT_EQ(mqtt->undelivered(), 0U);
  int missing = 0;
  for (int i = 0; i < next; ++i)
    missing += subscriber.has("\"code " + std::to_string(i) + "\"") ? 0 : 1;
  EXPECT_EQ(missing, 0);
  EXPECT_TRUE(said("the connection is lost"));
  EXPECT_EQ(sentences_.said.size(), 2U) << "once when it goes, once when it is back";
}

TEST_F(MqttTest, UserAndPassword) {
  const fs::path passwords = folder_ / "passwords";
  {
    ChildProcess make({NOX_MOSQUITTO_PASSWD, "-c", "-b", passwords, "pen", "secret"});
    ASSERT_EQ(make.wait(), 0) << make.output();
  }
  const Broker broker(folder_, "allow_anonymous false\npassword_file " + passwords.string() + "\n");
  MqttOptions with = options(broker.port());
  EXPECT_THROW(open(with), OutputError);
  with.broker.user = "pen";
  with.broker.password = "wrong";
  try {
    open(with);
    FAIL() << "opened";
  } catch (const OutputError &error) {
    EXPECT_NE(std::string(error.what()).find("not authorised"), std::string::npos) << error.what();
    EXPECT_EQ(std::string(error.what()).find("wrong"), std::string::npos);
  }
  with.broker.password = "secret";
  auto mqtt = open(with);
  mqtt->take(code(0.1, "x"));
  mqtt->drain();
  EXPECT_EQ(mqtt->undelivered(), 0U);
}

TEST_F(MqttTest, Tls) {
  const std::string key = folder_ / "key.pem";
  const std::string certificate = folder_ / "cert.pem";
  {
    ChildProcess make({NOX_OPENSSL, "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2",
                       "-subj", "/CN=localhost", "-addext",
                       "subjectAltName=DNS:localhost,IP:127.0.0.1", "-keyout", key, "-out",
                       certificate});
    ASSERT_EQ(make.wait(), 0) << make.output();
  }
  // A broker that was started by root reads it as somebody else.
  fs::permissions(key, fs::perms::all);
  const Broker broker(folder_,
                      std::string(kAnyone) + "certfile " + certificate + "\nkeyfile " + key + "\n");
  MqttOptions with = options(broker.port());
  with.broker.address.host = "localhost";
  with.broker.tls = true;
  EXPECT_THROW(open(with), OutputError) << "nobody vouches for this broker";
  {
    // The library notices it elsewhere when the certificate comes late.
    const test::LateRelay relay(broker.port(), milliseconds(100));
    with.broker.address.port = relay.port();
    EXPECT_THROW(open(with), OutputError) << "nor for one that is slow";
    with.broker.address.port = broker.port();
  }
  with.broker.ca_file = folder_ / "none.pem";
  EXPECT_THROW(open(with), OutputError);
  with.broker.ca_file = certificate;
  auto mqtt = open(with);
  mqtt->take(code(0.1, "x"));
  mqtt->drain();
  EXPECT_EQ(mqtt->undelivered(), 0U);
  EXPECT_TRUE(sentences_.said.empty()) << sentences_.said.front();
}

TEST_F(MqttTest, NobodyIsThereOverTlsEither) {
  MqttOptions with = options(test::free_tcp_port());
  with.broker.tls = true;
  const auto before = std::chrono::steady_clock::now();
  open(with);
  EXPECT_TRUE(said("Connection refused")) << sentences_.said.front();
  EXPECT_LT(std::chrono::steady_clock::now() - before, milliseconds(2000));
}

TEST_F(MqttTest, ANameThatDoesNotResolveIsAnError) {
  MqttOptions nowhere = options(1883);
  nowhere.broker.address.host = "no-such-host.invalid";
  try {
    open(nowhere);
    FAIL() << "opened";
  } catch (const OutputError &error) {
    EXPECT_NE(std::string(error.what()).find("--mqtt no-such-host.invalid:1883"),
              std::string::npos);
  }
}

}  // namespace
}  // namespace nox::app
