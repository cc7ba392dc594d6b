#include "nox-visuals/options/output_options.h"

namespace nox::app {

void add_pen_output_options(CLI::App *command, OutputOptions *options) {
  command->add_option("--tuio", options->tuio, "a cursor while pressed; port 3333; repeatable")
      ->option_text("HOST[:PORT]")
      ->allow_extra_args(false);
  command->add_option("--osc", options->osc, "OSC messages; repeatable")
      ->option_text("HOST:PORT")
      ->allow_extra_args(false);
  command->add_option("--plot", options->plot, "the path as a picture, at the end")
      ->option_text("F.png|F.svg");
}

void add_output_options(CLI::App *command, OutputOptions *options) {
  MqttSettings *mqtt = &options->mqtt;
  command->add_option("--mqtt", mqtt->url, "mqtt[s]://HOST[:PORT][/PREFIX]; user, TLS: see docs")
      ->option_text("URL");
  // In no --help, which has to fit a screen; docs/mqtt.md has them.
  const auto add_hidden = [command](const char *name, std::string *value) {
    return command->add_option(name, *value)->group("");
  };
  CLI::Option *user = add_hidden("--mqtt-user", &mqtt->user);
  add_hidden("--mqtt-password-file", &mqtt->password_file)->needs(user);
  add_hidden("--mqtt-ca", &mqtt->ca_file);
  CLI::Option *cert = add_hidden("--mqtt-cert", &mqtt->cert_file);
  CLI::Option *key = add_hidden("--mqtt-key", &mqtt->key_file);
  cert->needs(key);
  key->needs(cert);
  command->add_option("--metrics", options->metrics, "Prometheus' text over HTTP")
      ->option_text("[ADDR:]PORT");
}

}  // namespace nox::app
