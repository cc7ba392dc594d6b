// The picture in a buffer, as the elements see it.
#ifndef NOX_VISUALS_STREAM_MAPPED_PICTURE_H_
#define NOX_VISUALS_STREAM_MAPPED_PICTURE_H_

#include <gst/gst.h>
#include <gst/video/video.h>

#include <optional>

#include "noxvisuals/whole_frame.h"
#include "video/nox_video_frame.h"

namespace nox::app {

class MappedPicture {
 public:
  // Maps a buffer that is at a pad for reading. The buffer must outlive it.
  MappedPicture(GstPad *pad, GstBuffer *buffer);
  // Maps it for writing too, which copies what somebody else holds of it: the buffer itself must be
  // writable. What was written is in the buffer when this is gone.
  MappedPicture(const GstVideoInfo &info, GstBuffer *buffer);
  ~MappedPicture();
  MappedPicture(const MappedPicture &) = delete;
  MappedPicture &operator=(const MappedPicture &) = delete;

  // Null where the buffer holds no picture.
  NoxVideoFrame *frame() { return whole_ ? &whole_->get() : nullptr; }

 private:
  void map(const GstVideoInfo &info, GstBuffer *buffer, GstMapFlags flags);

  GstVideoFrame mapped_;
  std::optional<noxvisuals::WholeFrame> whole_;  // none where nothing is mapped
  bool written_ = false;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_MAPPED_PICTURE_H_
