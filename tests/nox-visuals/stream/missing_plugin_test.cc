#include "nox-visuals/stream/missing_plugin.h"

#include <gst/pbutils/pbutils.h>
#include <gtest/gtest.h>

#include <string>

#include "nox-visuals/gst_pointers.h"

namespace {

using nox::app::debian_package;
using nox::app::GstPointer;
using nox::app::missing_plugin;

// What GStreamer posts when it has no decoder for these caps.
std::string sentence_for(const char *caps) {
  const GstPointer<GstElement> element(
      GST_ELEMENT(gst_object_ref_sink(gst_element_factory_make("identity", nullptr))));
  const GstPointer<GstCaps> wanted(gst_caps_from_string(caps));
  const GstPointer<GstMessage> message(
      gst_missing_decoder_message_new(element.get(), wanted.get()));
  return missing_plugin(message.get());
}

TEST(MissingPlugin, IsNamedWithItsPackage) {
  EXPECT_EQ(sentence_for("video/x-h264,profile=high"),
            "H.264 (High Profile) decoder; install gstreamer1.0-libav");
  EXPECT_EQ(sentence_for("video/x-vp9"), "VP9 decoder; install gstreamer1.0-plugins-good");
  EXPECT_EQ(sentence_for("video/x-theora"), "Theora decoder; install gstreamer1.0-plugins-base");
  EXPECT_EQ(sentence_for("video/mpegts,systemstream=true"),
            "MPEG-2 Transport Stream demuxer; install gstreamer1.0-plugins-bad");
}

TEST(MissingPlugin, OtherMessagesTellOfNone) {
  const GstPointer<GstMessage> message(gst_message_new_eos(nullptr));
  EXPECT_EQ(missing_plugin(message.get()), "");
}

TEST(MissingPlugin, PackagesOfElementsAndAddresses) {
  EXPECT_EQ(debian_package("element-vp8enc"), "gstreamer1.0-plugins-good");
  EXPECT_EQ(debian_package("urisource-rtsp"), "gstreamer1.0-plugins-good");
  EXPECT_EQ(debian_package("element-of-our-own"), "");
}

}  // namespace
