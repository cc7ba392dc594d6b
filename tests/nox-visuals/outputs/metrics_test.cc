#include "nox-visuals/outputs/metrics.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "nox-visuals/outputs/output_error.h"
#include "nox-visuals/support/recorded.h"
#include "nox-visuals/support/sockets.h"

namespace nox::app {
namespace {

using recorded::pen;

constexpr const char *kGet = "GET /metrics HTTP/1.0\r\n\r\n";

bool has_line(const std::string &page, const std::string &line) {
  return page.find("\n" + line + "\n") != std::string::npos;
}

class MetricsTest : public testing::Test {
 protected:
  std::string get() { return test::ask(port_, kGet); }

  const std::uint16_t port_ = test::free_tcp_port();
  std::int64_t now_ns_ = 0;
  Metrics metrics_{{"127.0.0.1", port_}, "hall", [this] { return now_ns_; }};
};

TEST_F(MetricsTest, TellsTheCountsOfTheLastTick) {
  metrics_.tick(0, {.frames = 450,
                    .found = 447,
                    .losses = 2,
                    .losses_pressed = 1,
                    .dropped = 5,
                    .undelivered = 9});
  const std::string page = get();
  EXPECT_TRUE(page.starts_with("HTTP/1.0 200") || page.starts_with("HTTP/1.1 200")) << page;
  EXPECT_NE(page.find("Content-Type: text/plain; version=0.0.4; charset=utf-8"), std::string::npos);
  for (const char *line :
       {"nox_frames_total{stream=\"hall\"} 450", "nox_found_total{stream=\"hall\"} 447",
        "nox_lost_total{stream=\"hall\"} 2", "nox_lost_pressed_total{stream=\"hall\"} 1",
        "nox_dropped_total{stream=\"hall\"} 5", "nox_undelivered_total{stream=\"hall\"} 9",
        "# TYPE nox_frames_total counter", "# TYPE nox_latency_seconds histogram"}) {
    EXPECT_TRUE(has_line(page, line)) << line << " in " << page;
  }
}

TEST_F(MetricsTest, TheEndHasTheLastCounts) {
  metrics_.take(End{recorded::at(9), {.frames = 7}});
  EXPECT_TRUE(has_line(get(), "nox_frames_total{stream=\"hall\"} 7"));
}

TEST_F(MetricsTest, LatencyIsFromTheFramesArrivalOn) {
  const Pen seen = pen(1.0, 0.5, 0.5, false);
  for (const std::int64_t us : {900, 1'000, 1'001, 7'000'000}) {
    now_ns_ = seen.when.entered_ns + us * 1'000;
    metrics_.take(seen);
  }
  const std::string page = get();
  for (const char *line : {"nox_latency_seconds_bucket{stream=\"hall\",le=\"0.001\"} 2",
                           "nox_latency_seconds_bucket{stream=\"hall\",le=\"0.002\"} 3",
                           "nox_latency_seconds_bucket{stream=\"hall\",le=\"5\"} 3",
                           "nox_latency_seconds_bucket{stream=\"hall\",le=\"+Inf\"} 4",
                           "nox_latency_seconds_sum{stream=\"hall\"} 7.002901",
                           "nox_latency_seconds_count{stream=\"hall\"} 4"}) {
    EXPECT_TRUE(has_line(page, line)) << line << " in " << page;
  }
}

TEST_F(MetricsTest, OtherPathsAndMethodsAreRefused) {
  EXPECT_NE(test::ask(port_, "GET / HTTP/1.0\r\n\r\n").find(" 404 "), std::string::npos);
  EXPECT_NE(test::ask(port_, "POST /metrics HTTP/1.0\r\nContent-Length: 0\r\n\r\n").find(" 405 "),
            std::string::npos);
  EXPECT_NE(test::ask(port_, "HEAD /metrics HTTP/1.0\r\n\r\n").find(" 200 "), std::string::npos);
}

TEST_F(MetricsTest, WhoAsksAndDoesNotReadHoldsNobodyUp) {
  std::atomic<bool> done{false};
  std::thread asker([&] {
    while (!done) get();
  });
  for (int i = 0; i < 20'000; ++i) metrics_.take(pen(i / 30.0, 0.5, 0.5, false));
  done = true;
  asker.join();
  EXPECT_TRUE(has_line(get(), "nox_latency_seconds_count{stream=\"hall\"} 20000"));
}

TEST_F(MetricsTest, APortThatIsTakenIsAnErrorThatNamesIt) {
  try {
    const Metrics second({"127.0.0.1", port_}, "hall", [] { return 0; });
    FAIL() << "opened";
  } catch (const OutputError &error) {
    EXPECT_NE(std::string(error.what()).find("--metrics 127.0.0.1:" + std::to_string(port_)),
              std::string::npos);
  }
}

TEST(MetricsOpenTest, AnAddressOfAnotherMachineIsAnError) {
  EXPECT_THROW(Metrics({"192.0.2.1", test::free_tcp_port()}, "s", [] { return 0; }), OutputError);
}

TEST(MetricsOpenTest, EndsAtOnceAThousandTimes) {
  for (int i = 0; i < 100; ++i) {
    const Metrics metrics({"127.0.0.1", test::free_tcp_port()}, "s", [] { return 0; });
  }
}

}  // namespace
}  // namespace nox::app
