#include "nox-visuals/stream/mapped_picture.h"

#include "nox-visuals/gst_pointers.h"

namespace nox::app {

MappedPicture::MappedPicture(GstPad *pad, GstBuffer *buffer) {
  const GstPointer<GstCaps> caps(gst_pad_get_current_caps(pad));
  GstVideoInfo info;
  if (caps == nullptr || gst_video_info_from_caps(&info, caps.get()) == FALSE) return;
  map(info, buffer, GST_MAP_READ);
}

MappedPicture::MappedPicture(const GstVideoInfo &info, GstBuffer *buffer) : written_(true) {
  map(info, buffer, static_cast<GstMapFlags>(GST_MAP_READ | GST_MAP_WRITE));
}

MappedPicture::~MappedPicture() {
  if (!whole_) return;
  if (written_) whole_->write_back();
  gst_video_frame_unmap(&mapped_);
}

void MappedPicture::map(const GstVideoInfo &info, GstBuffer *buffer, GstMapFlags flags) {
  if (gst_video_frame_map(&mapped_, &info, buffer, flags) == FALSE) return;
  whole_.emplace(mapped_, noxvisuals::Touches::kSamples);
}

}  // namespace nox::app
