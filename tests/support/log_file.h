// What GStreamer's own log function writes, byte for byte.
#ifndef SUPPORT_LOG_FILE_H_
#define SUPPORT_LOG_FILE_H_

#include <gst/gst.h>

#include <cstdio>
#include <string>

namespace nox::test {

// Sets the threshold of `category` and keeps the log in a file of its own while it lives. The
// threshold is NONE again at the end, and the log goes to where it went.
class LogFile {
 public:
  LogFile(const char *category, GstDebugLevel threshold)
      : category_(category), file_(std::tmpfile()) {
    // In parentheses: macros of these names compare in a way that the warnings reject. Null is
    // GStreamer's own function.
    (gst_debug_remove_log_function)(nullptr);
    (gst_debug_add_log_function)(gst_debug_log_default, file_, nullptr);
    gst_debug_set_threshold_for_name(category, threshold);
  }
  ~LogFile() {
    gst_debug_set_threshold_for_name(category_.c_str(), GST_LEVEL_NONE);
    (gst_debug_remove_log_function)(nullptr);
    (gst_debug_add_log_function)(gst_debug_log_default, nullptr, nullptr);
    std::fclose(file_);
  }
  LogFile(const LogFile &) = delete;
  LogFile &operator=(const LogFile &) = delete;

  std::string text() {
    std::string text;
    std::rewind(file_);
    for (int c = std::fgetc(file_); c != EOF; c = std::fgetc(file_)) text += static_cast<char>(c);
    return text;
  }

 private:
  std::string category_;
  std::FILE *file_;
};

}  // namespace nox::test

#endif  // SUPPORT_LOG_FILE_H_
