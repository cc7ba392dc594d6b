// Where observations go besides standard output.
#ifndef NOX_VISUALS_OPTIONS_OUTPUT_OPTIONS_H_
#define NOX_VISUALS_OPTIONS_OUTPUT_OPTIONS_H_

#include <string>
#include <vector>

#include "nox-visuals/options/command.h"

namespace nox::app {

struct MqttSettings {
  std::string url;            // mqtt[s]://HOST[:PORT][/PREFIX]; empty: off
  std::string user;           // empty: nobody
  std::string password_file;  // a password on the command line could be read by everyone
  std::string ca_file, cert_file, key_file;
};

// As the options were given; each output reads its own when it is opened.
struct OutputOptions {
  std::vector<std::string> tuio;  // HOST[:PORT]
  std::vector<std::string> osc;   // HOST:PORT
  MqttSettings mqtt;
  std::string metrics;  // [ADDR:]PORT
  std::string plot;     // F.png or F.svg
  bool raw = false;     // payloads on standard output, not JSON lines
};

// Adds --tuio, --osc and --plot: what only makes sense for a pen.
void add_pen_output_options(Command *command, OutputOptions *options);

// Adds --mqtt with what belongs to it, and --metrics.
void add_output_options(Command *command, OutputOptions *options);

}  // namespace nox::app

#endif  // NOX_VISUALS_OPTIONS_OUTPUT_OPTIONS_H_
