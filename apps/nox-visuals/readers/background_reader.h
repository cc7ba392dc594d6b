// Slow readers in a thread of their own, which take the newest frame of a live stream.
#ifndef NOX_VISUALS_READERS_BACKGROUND_READER_H_
#define NOX_VISUALS_READERS_BACKGROUND_READER_H_

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "nox-visuals/observation.h"
#include "nox-visuals/readers/reader.h"

namespace nox::app {

class BackgroundReader {
 public:
  // `found` is called from the thread with each code that the readers see in a frame and nobody saw
  // before, the frame's moment in it, and with whether it is the first code of that frame.
  BackgroundReader(std::vector<std::unique_ptr<Reader>> readers,
                   std::function<void(Code code, bool first)> found);
  ~BackgroundReader();
  BackgroundReader(const BackgroundReader &) = delete;
  BackgroundReader &operator=(const BackgroundReader &) = delete;

  // Hands over a frame, and the codes already seen in it; never waits for the readers. A frame that
  // they have not begun is replaced.
  void offer(const Moment &when, const qr::Luma &picture, std::vector<Code> seen);

  // Waits until the frame that was offered last is read, and ends the thread.
  void finish();

 private:
  struct Frame {
    Moment when;
    std::vector<std::uint8_t> samples;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::vector<Code> seen;
  };

  void run();
  void read(Frame *frame);

  std::vector<std::unique_ptr<Reader>> readers_;
  std::function<void(Code code, bool first)> found_;
  std::mutex mutex_;
  std::condition_variable changed_;
  Frame waiting_;  // its memory stays with it
  bool has_waiting_ = false;
  bool finishing_ = false;
  std::thread thread_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_READERS_BACKGROUND_READER_H_
