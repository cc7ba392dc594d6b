#include "nox-visuals/stream/signals.h"

#include <glib-unix.h>

#include <csignal>
#include <utility>

namespace nox::app {
namespace {

bool interrupted = false;
bool terminated = false;

gboolean on_interrupt(gpointer stop) {
  if (interrupted) end_by_signal_if_interrupted();
  interrupted = true;
  (*static_cast<std::function<void()> *>(stop))();
  return G_SOURCE_CONTINUE;
}

gboolean on_terminate(gpointer stop) {
  terminated = true;
  (*static_cast<std::function<void()> *>(stop))();
  return G_SOURCE_CONTINUE;
}

}  // namespace

SignalWatch::SignalWatch(std::function<void()> stop)
    : stop_(std::move(stop)),
      interrupt_(g_unix_signal_add(SIGINT, on_interrupt, &stop_)),
      terminate_(g_unix_signal_add(SIGTERM, on_terminate, &stop_)) {}

SignalWatch::~SignalWatch() {
  g_source_remove(interrupt_);
  g_source_remove(terminate_);
}

bool stopped_by_signal() {
  return interrupted || terminated;
}

void end_by_signal_if_interrupted() {
  if (!interrupted) return;
  std::signal(SIGINT, SIG_DFL);
  std::raise(SIGINT);
}

}  // namespace nox::app
