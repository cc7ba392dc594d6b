#include "nox-visuals/readers/background_reader.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "nox-visuals/readers/same_code.h"

namespace nox::app {

BackgroundReader::BackgroundReader(std::vector<std::unique_ptr<Reader>> readers,
                                   std::function<void(Code code, bool first)> found)
    : readers_(std::move(readers)), found_(std::move(found)), thread_([this] { run(); }) {}

BackgroundReader::~BackgroundReader() {
  finish();
}

void BackgroundReader::offer(const Moment &when, const qr::Luma &picture, std::vector<Code> seen) {
  const auto width = static_cast<std::size_t>(picture.width);
  const std::lock_guard lock(mutex_);
  waiting_.when = when;
  waiting_.width = picture.width;
  waiting_.height = picture.height;
  waiting_.seen = std::move(seen);
  waiting_.samples.resize(width * static_cast<std::size_t>(picture.height));
  std::uint8_t *row = waiting_.samples.data();
  for (std::int32_t y = 0; y < picture.height; ++y) {
    std::copy_n(picture.samples + y * picture.stride, width, row);
    row += width;
  }
  has_waiting_ = true;
  changed_.notify_one();
}

void BackgroundReader::finish() {
  {
    const std::lock_guard lock(mutex_);
    finishing_ = true;
    changed_.notify_one();
  }
  if (thread_.joinable()) thread_.join();
}

void BackgroundReader::run() {
  Frame frame;
  while (true) {
    {
      std::unique_lock lock(mutex_);
      changed_.wait(lock, [this] { return has_waiting_ || finishing_; });
      if (!has_waiting_) return;
      std::swap(frame, waiting_);
      has_waiting_ = false;
    }
    read(&frame);
  }
}

void BackgroundReader::read(Frame *frame) {
  const qr::Luma picture{frame->samples.data(), frame->width, frame->width, frame->height};
  for (const auto &reader : readers_) {
    const std::size_t known = frame->seen.size();
    add_new_codes(reader->read(picture), &frame->seen);
    for (std::size_t i = known; i < frame->seen.size(); ++i) {
      Code code = frame->seen[i];
      code.when = frame->when;
      found_(std::move(code), i == 0);
    }
  }
}

}  // namespace nox::app
