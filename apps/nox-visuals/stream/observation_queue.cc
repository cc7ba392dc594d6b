#include "nox-visuals/stream/observation_queue.h"

#include <algorithm>
#include <utility>

namespace nox::app {

void ObservationQueue::set_when_full(WhenFull when_full) {
  const std::lock_guard lock(mutex_);
  when_full_ = when_full;
  changed_.notify_all();
}

bool ObservationQueue::is_position(const Observation &observation) {
  if (std::holds_alternative<Code>(observation)) return false;
  const Pen *pen = std::get_if<Pen>(&observation);
  const auto before =
      std::exchange(pressed_, pen == nullptr ? std::nullopt : std::optional(pen->pressed));
  return pen != nullptr && before == pen->pressed;
}

void ObservationQueue::drop_oldest_position() {
  const auto oldest =
      std::find_if(items_.begin(), items_.end(), [](const Item &item) { return item.position; });
  if (oldest == items_.end()) return;
  items_.erase(oldest);
  ++dropped_;
}

void ObservationQueue::push(Observation observation) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] {
    return closed_ || when_full_ == WhenFull::kDropOldest || items_.size() < capacity_;
  });
  if (closed_) return;
  const bool position = is_position(observation);
  items_.push_back({std::move(observation), position});
  if (when_full_ == WhenFull::kDropOldest && items_.size() > capacity_) drop_oldest_position();
  lock.unlock();
  changed_.notify_all();
}

std::optional<Observation> ObservationQueue::pop(std::chrono::milliseconds patience) {
  std::unique_lock lock(mutex_);
  if (!changed_.wait_for(lock, patience, [this] { return !items_.empty(); })) return {};
  Observation observation = std::move(items_.front().observation);
  items_.pop_front();
  lock.unlock();
  changed_.notify_all();
  return observation;
}

void ObservationQueue::close() {
  const std::lock_guard lock(mutex_);
  closed_ = true;
  changed_.notify_all();
}

}  // namespace nox::app
