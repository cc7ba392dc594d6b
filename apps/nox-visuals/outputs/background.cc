#include "nox-visuals/outputs/background.h"

#include <atomic>
#include <chrono>
#include <thread>
#include <utility>

#include "nox-visuals/console.h"
#include "nox-visuals/stream/observation_queue.h"

namespace nox::app {
namespace {

constexpr std::size_t kCapacity = 1000;
constexpr std::chrono::seconds kPatience{2};
constexpr std::chrono::milliseconds kLook{5};

}  // namespace

struct Background::Shared {
  Shared(std::unique_ptr<Output> to, std::string called)
      : output(std::move(to)), name(std::move(called)), queue(kCapacity) {
    queue.set_when_full(WhenFull::kDropOldest);
  }

  void run() {
    while (!ended) {
      const auto observation = queue.pop(std::chrono::hours(1));
      if (!observation) continue;
      output->take(*observation);
      undelivered = output->undelivered();
      broken = output->broken();
      --waiting;
      ended = std::holds_alternative<End>(*observation);
    }
  }

  std::unique_ptr<Output> output;  // used by the thread only
  const std::string name;
  ObservationQueue queue;
  std::atomic<std::uint64_t> waiting = 0;  // brought and not yet taken, dropped ones too
  std::atomic<std::uint64_t> undelivered = 0;
  std::atomic<bool> broken = false;
  std::atomic<bool> ended = false;
};

Background::Background(std::unique_ptr<Output> output, std::string name)
    : shared_(std::make_shared<Shared>(std::move(output), std::move(name))) {
  std::thread([shared = shared_] { shared->run(); }).detach();
}

Background::~Background() {
  if (!wait_until_empty()) say(shared_->name + ": nobody reads; the last lines are not written");
}

bool Background::wait_until_empty() {
  const auto until = std::chrono::steady_clock::now() + kPatience;
  while (shared_->waiting > shared_->queue.dropped()) {
    if (std::chrono::steady_clock::now() > until) return false;
    std::this_thread::sleep_for(kLook);
  }
  return true;
}

void Background::take(const Observation &observation) {
  ++shared_->waiting;
  shared_->queue.push(observation);
}

void Background::drain() {
  wait_until_empty();
}

std::uint64_t Background::undelivered() const {
  return shared_->undelivered + shared_->queue.dropped();
}

bool Background::broken() const {
  return shared_->broken;
}

}  // namespace nox::app
