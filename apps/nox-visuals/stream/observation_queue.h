// What stands between the streaming thread and the outputs.
#ifndef NOX_VISUALS_STREAM_OBSERVATION_QUEUE_H_
#define NOX_VISUALS_STREAM_OBSERVATION_QUEUE_H_

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

#include "nox-visuals/observation.h"

namespace nox::app {

// What happens to who brings an observation to a full queue.
enum class WhenFull {
  kWait,       // for files: every observation is delivered
  kDropOldest  // for live streams, which do not wait: the oldest position goes. Presses, releases,
               // losses, codes and the end stay, whatever room they take.
};

class ObservationQueue {
 public:
  // Who brings something to a full queue waits.
  explicit ObservationQueue(std::size_t capacity) : capacity_(capacity) {}

  void set_when_full(WhenFull when_full);

  void push(Observation observation);

  // The next observation, or nothing when none came for so long.
  std::optional<Observation> pop(std::chrono::milliseconds patience);

  // From now on nothing waits for room, and what comes is thrown away.
  void close();

  std::uint64_t dropped() const { return dropped_; }

 private:
  struct Item {
    Observation observation;
    bool position;  // a pen as pressed as the one before it: one of many
  };

  bool is_position(const Observation &observation);
  void drop_oldest_position();

  const std::size_t capacity_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Item> items_;
  WhenFull when_full_ = WhenFull::kWait;
  std::optional<bool> pressed_;  // of the last pen that was pushed; none after anything else
  bool closed_ = false;
  std::atomic<std::uint64_t> dropped_ = 0;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_OBSERVATION_QUEUE_H_
