// nox-visuals: what the module's elements see, for people and for the tools that they use.
#include <gst/gst.h>
#include <CLI/CLI.hpp>

#include <csignal>
#include <exception>
#include <memory>

#include "nox-visuals/commands/commands.h"
#include "nox-visuals/config.h"
#include "nox-visuals/console.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/options/config_file.h"
#include "nox-visuals/options/help.h"
#include "nox-visuals/outputs/output_error.h"
#include "nox-visuals/stream/module.h"
#include "nox-visuals/stream/signals.h"

namespace {

using nox::app::Action;
using nox::app::AddCommand;
using nox::app::say;

// In the order of --help.
constexpr AddCommand kCommands[] = {
    nox::app::add_track,   nox::app::add_scan,   nox::app::add_vectorize, nox::app::add_tune,
    nox::app::add_devices, nox::app::add_doctor, nox::app::add_demo,
};

// What the command line asks for; nothing when that was said already, with its status in `status`.
Action parse(int argc, char **argv, int *status) {
  CLI::App program("Follows pens of light, reads QR codes and draws lasting edges in video.",
                   "nox-visuals");
  program.formatter(std::make_shared<nox::app::HelpFormatter>());
  program.require_subcommand(1);
  program.set_version_flag("--version", "nox-visuals " NOX_VERSION NOX_BUILT_WITHOUT);
  Action chosen;
  for (const AddCommand add : kCommands) add(&program, &chosen);
  try {
    program.parse(argc, argv);
    for (CLI::App *command : program.get_subcommands()) nox::app::apply_config_file(command);
  } catch (const CLI::Success &help) {
    program.exit(help);
    *status = nox::app::kDone;
    return {};
  } catch (const CLI::ParseError &error) {
    throw nox::app::UsageError(error.what());
  }
  return chosen;
}

int run(int argc, char **argv) {
  try {
    int status = nox::app::kDone;
    const Action action = parse(argc, argv, &status);
    return action ? action() : status;
  } catch (const nox::app::UsageError &error) {
    say(error.what());
    return nox::app::kUsage;
  } catch (const nox::app::OutputError &error) {
    say(error.what());
    return nox::app::kOutputFailed;
  } catch (const std::exception &error) {
    say(error.what());
    return nox::app::kStreamFailed;
  }
}

}  // namespace

int main(int argc, char **argv) {
  // Who no longer reads is found out by the write, which says so.
  std::signal(SIGPIPE, SIG_IGN);
  gst_init(nullptr, nullptr);
  nox::app::find_module();
  const int status = run(argc, argv);
  nox::app::end_by_signal_if_interrupted();
  return status;
}
