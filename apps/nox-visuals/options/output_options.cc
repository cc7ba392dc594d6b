#include "nox-visuals/options/output_options.h"

namespace nox::app {

void add_pen_output_options(Command *command, OutputOptions *options) {
  command->option("--tuio", &options->tuio, "a cursor while pressed; port 3333; repeatable")
      .value("HOST[:PORT]")
      .one_a_time();
  command->option("--osc", &options->osc, "OSC messages; repeatable")
      .value("HOST:PORT")
      .one_a_time();
  command->option("--plot", &options->plot, "the path as a picture, at the end")
      .value("F.png|F.svg");
}

void add_output_options(Command *command, OutputOptions *options) {
  MqttSettings *mqtt = &options->mqtt;
  command->option("--mqtt", &mqtt->url, "mqtt[s]://HOST[:PORT][/PREFIX]; user, TLS: see docs")
      .value("URL");
  // In no --help, which has to fit a screen; docs/outputs.md has them.
  const auto add_hidden = [command](const char *name, std::string *value) {
    command->option(name, value, "").hidden();
  };
  add_hidden("--mqtt-user", &mqtt->user);
  add_hidden("--mqtt-password-file", &mqtt->password_file);
  add_hidden("--mqtt-ca", &mqtt->ca_file);
  add_hidden("--mqtt-cert", &mqtt->cert_file);
  add_hidden("--mqtt-key", &mqtt->key_file);
  command->option("--metrics", &options->metrics, "Prometheus' text over HTTP")
      .value("[ADDR:]PORT");
}

}  // namespace nox::app
