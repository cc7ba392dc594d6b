// What a debug category logs while the capture lives.
#ifndef SUPPORT_LOG_CAPTURE_H_
#define SUPPORT_LOG_CAPTURE_H_

#include <gst/gst.h>

#include <mutex>
#include <string>
#include <vector>

namespace nox::test {

struct LogLine {
  GstDebugLevel level;
  std::string message;
  GObject *object;  // not owned; only to compare
};

// Sets the threshold of `category` and collects its lines, from every thread. The threshold is NONE
// again at the end.
class LogCapture {
 public:
  LogCapture(const char *category, GstDebugLevel threshold) : category_(category) {
    gst_debug_set_threshold_for_name(category, threshold);
    // In parentheses: the macro of this name casts in a way that the warnings reject.
    (gst_debug_add_log_function)(collect, this, nullptr);
  }
  ~LogCapture() {
    gst_debug_remove_log_function_by_data(this);
    gst_debug_set_threshold_for_name(category_.c_str(), GST_LEVEL_NONE);
  }
  LogCapture(const LogCapture &) = delete;
  LogCapture &operator=(const LogCapture &) = delete;

  std::vector<LogLine> lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
  }

  std::vector<std::string> messages() const {
    std::vector<std::string> messages;
    for (const LogLine &line : lines()) messages.push_back(line.message);
    return messages;
  }

 private:
  static void collect(GstDebugCategory *category, GstDebugLevel level, const gchar * /*file*/,
                      const gchar * /*function*/, gint /*line*/, GObject *object,
                      GstDebugMessage *message, gpointer self) {
    auto *capture = static_cast<LogCapture *>(self);
    if (capture->category_ != gst_debug_category_get_name(category)) return;
    const std::lock_guard lock(capture->mutex_);
    capture->lines_.push_back({level, gst_debug_message_get(message), object});
  }

  std::string category_;
  mutable std::mutex mutex_;
  std::vector<LogLine> lines_;
};

}  // namespace nox::test

#endif  // SUPPORT_LOG_CAPTURE_H_
