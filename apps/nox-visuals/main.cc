// nox-visuals: what the module's elements see, for people and for the tools that they use.
#include <gst/gst.h>

#include <csignal>
#include <exception>

#include "nox-visuals/commands/commands.h"
#include "nox-visuals/config.h"
#include "nox-visuals/console.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/options/command_line.h"
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

// The chosen command; none when there was only something to say, which is said then.
Action parse(int argc, char **argv) {
  nox::app::CommandLine line(
      "nox-visuals", "Follows pens of light, reads QR codes and draws lasting edges in video.",
      "nox-visuals " NOX_VERSION NOX_BUILT_WITHOUT);
  Action chosen;
  for (const AddCommand add : kCommands) add(line.program(), &chosen);
  return line.parse(argc, argv) ? chosen : Action();
}

int run(int argc, char **argv) {
  try {
    const Action action = parse(argc, argv);
    return action ? action() : nox::app::kDone;
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
