#include "nox-visuals/stream/delivery.h"

#include <glib.h>

#include <algorithm>
#include <utility>

namespace nox::app {
namespace {

constexpr std::chrono::milliseconds kTick{50};

std::int64_t monotonic_ns() {
  return g_get_monotonic_time() * 1000;
}

}  // namespace

Delivery::Delivery(ObservationQueue *queue, std::vector<std::unique_ptr<Step>> steps,
                   std::vector<std::unique_ptr<Output>> outputs, const Counts *counts,
                   std::function<void()> give_up)
    : queue_(queue),
      steps_(std::move(steps)),
      outputs_(std::move(outputs)),
      counts_(counts),
      give_up_(std::move(give_up)),
      thread_([this] { run(); }) {}

Delivery::~Delivery() {
  if (thread_.joinable()) finish({});
}

void Delivery::finish(const Moment &when) {
  queue_->push(End{when, {}});
  thread_.join();
}

bool Delivery::output_broken() const {
  return std::any_of(outputs_.begin(), outputs_.end(), [](const auto &it) { return it->broken(); });
}

Totals Delivery::totals() const {
  Totals totals = counts_->totals();
  totals.undelivered += queue_->dropped();
  for (const auto &output : outputs_) totals.undelivered += output->undelivered();
  return totals;
}

// Through the steps from the first on, and what is left of it to the outputs.
bool Delivery::deliver(const Observation &observation) {
  std::vector<Observation> now = {observation};
  std::vector<Observation> next;
  for (const auto &step : steps_) {
    next.clear();
    for (const Observation &it : now) step->take(it, &next);
    now.swap(next);
  }
  bool ended = false;
  for (Observation &it : now) {
    if (auto *end = std::get_if<End>(&it)) {
      for (const auto &output : outputs_) output->drain();
      end->totals = totals();
      ended = true;
    }
    for (const auto &output : outputs_) output->take(it);
  }
  return ended;
}

void Delivery::tick() {
  const Totals so_far = totals();
  for (const auto &output : outputs_) output->tick(monotonic_ns(), so_far);
}

void Delivery::run() {
  bool gave_up = false;
  std::int64_t next_tick = 0;
  for (bool ended = false; !ended;) {
    if (const auto observation = queue_->pop(kTick)) ended = deliver(*observation);
    const std::int64_t now = monotonic_ns();
    if (now >= next_tick) {
      tick();
      next_tick = now + std::chrono::nanoseconds(kTick).count();
    }
    const bool all_broken =
        std::all_of(outputs_.begin(), outputs_.end(), [](const auto &it) { return it->broken(); });
    if (all_broken && !outputs_.empty() && !std::exchange(gave_up, true)) {
      give_up_();
    }
  }
}

}  // namespace nox::app
