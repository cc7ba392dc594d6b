#include "nox-visuals/outputs/outputs.h"

#include <glib.h>
#include <unistd.h>

#include <fstream>
#include <utility>

#include "nox-visuals/console.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/outputs/address.h"
#include "nox-visuals/outputs/background.h"
#include "nox-visuals/outputs/json_lines.h"
#include "nox-visuals/outputs/metrics.h"
#include "nox-visuals/outputs/mqtt.h"
#include "nox-visuals/outputs/mqtt_url.h"
#include "nox-visuals/outputs/osc.h"
#include "nox-visuals/outputs/output_error.h"
#include "nox-visuals/outputs/plot.h"
#include "nox-visuals/outputs/raw_payloads.h"
#include "nox-visuals/outputs/tuio.h"

namespace nox::app {
namespace {

using Opened = std::unique_ptr<Output>;

// A file waits until its lines are read; a live stream waits for nobody.
Opened open_standard_output(bool raw, const std::string &stream, bool live) {
  constexpr const char *kName = "standard output";
  Opened lines;
  if (raw) {
    lines = std::make_unique<RawPayloads>(STDOUT_FILENO, kName);
  } else {
    lines = std::make_unique<JsonLines>(STDOUT_FILENO, kName, stream);
  }
  if (!live) return lines;
  return std::make_unique<Background>(std::move(lines), kName);
}

[[noreturn, maybe_unused]] void built_without(const char *library, const char *option) {
  throw UsageError(std::string(option) + ": this nox-visuals was built without " + library);
}

Opened open_tuio([[maybe_unused]] const std::string &to,
                 [[maybe_unused]] const std::string &stream) {
#if NOX_HAVE_LIBLO
  return std::make_unique<Tuio>(parse_address(to, kTuioPort), stream, g_get_real_time(), say);
#else
  built_without("liblo", "--tuio");
#endif
}

Opened open_osc([[maybe_unused]] const std::string &to,
                [[maybe_unused]] const std::string &stream) {
#if NOX_HAVE_LIBLO
  return std::make_unique<Osc>(parse_address(to, {}), stream, say);
#else
  built_without("liblo", "--osc");
#endif
}

// The first line; editors put an end to it that nobody sees.
[[maybe_unused]] std::string read_password(const std::string &file) {
  std::ifstream in(file);
  std::string password;
  if (!std::getline(in, password)) {
    throw OutputError("--mqtt-password-file " + file + ": cannot be read, or is empty");
  }
  if (password.ends_with('\r')) password.pop_back();
  return password;
}

[[maybe_unused]] void check_settings(const MqttSettings &settings) {
  if (settings.cert_file.empty() != settings.key_file.empty()) {
    throw UsageError("--mqtt-cert and --mqtt-key go together");
  }
  if (!settings.password_file.empty() && settings.user.empty()) {
    throw UsageError("--mqtt-password-file needs --mqtt-user");
  }
}

Opened open_mqtt([[maybe_unused]] const MqttSettings &settings,
                 [[maybe_unused]] const std::string &stream, [[maybe_unused]] bool live) {
#if NOX_HAVE_MOSQUITTO
  check_settings(settings);
  const MqttUrl url = parse_mqtt_url(settings.url);
  MqttOptions options;
  options.prefix = url.prefix;
  if (live) options.unix_offset_us = g_get_real_time() - g_get_monotonic_time();
  options.broker.address = url.broker;
  options.broker.tls = url.tls;
  options.broker.ca_file = settings.ca_file;
  options.broker.cert_file = settings.cert_file;
  options.broker.key_file = settings.key_file;
  options.broker.user = settings.user;
  if (!settings.password_file.empty()) {
    options.broker.password = read_password(settings.password_file);
  }
  return std::make_unique<Mqtt>(options, stream, say);
#else
  built_without("libmosquitto", "--mqtt");
#endif
}

// PORT and :PORT are of this machine alone: who wants others to see the counts names an address.
[[maybe_unused]] Address parse_listener(const std::string &text) {
  if (text.starts_with(':')) return parse_address("127.0.0.1" + text, {});
  const bool port = !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
  return parse_address(port ? "127.0.0.1:" + text : text, {});
}

Opened open_metrics([[maybe_unused]] const std::string &listen,
                    [[maybe_unused]] const std::string &stream) {
#if NOX_HAVE_SOUP
  return std::make_unique<Metrics>(parse_listener(listen), stream,
                                   [] { return g_get_monotonic_time() * 1'000; });
#else
  built_without("libsoup", "--metrics");
#endif
}

Opened open_plot([[maybe_unused]] const std::string &file) {
#if NOX_HAVE_CAIRO
  return std::make_unique<Plot>(file, say);
#else
  built_without("cairo", "--plot");
#endif
}

}  // namespace

std::vector<Opened> open_outputs(const OutputOptions &options, const std::string &stream,
                                 bool live) {
  std::vector<Opened> outputs;
  outputs.push_back(open_standard_output(options.raw, stream, live));
  if (!options.metrics.empty()) outputs.push_back(open_metrics(options.metrics, stream));
  if (!options.plot.empty()) outputs.push_back(open_plot(options.plot));
  for (const std::string &to : options.tuio) outputs.push_back(open_tuio(to, stream));
  for (const std::string &to : options.osc) outputs.push_back(open_osc(to, stream));
  if (!options.mqtt.url.empty()) outputs.push_back(open_mqtt(options.mqtt, stream, live));
  return outputs;
}

bool any_output(const OutputOptions &options) {
  return !options.tuio.empty() || !options.osc.empty() || !options.mqtt.url.empty() ||
         !options.metrics.empty() || !options.plot.empty();
}

}  // namespace nox::app
