// Sources that a decoder has to be found for.
#ifndef NOX_VISUALS_SOURCES_DECODER_SOURCE_H_
#define NOX_VISUALS_SOURCES_DECODER_SOURCE_H_

#include <gst/gst.h>

#include <string>

namespace nox::app {

// Each makes a bin with one pad "src" that brings the first video stream, decoded; other streams
// are not decoded. The bin posts an error when there is no video. Throws StreamError.
GstElement *make_file_bin(const std::string &path);
GstElement *make_address_bin(const std::string &uri);

// The same of a stream that `source` brings with caps that `filter` allows.
GstElement *make_decoder_bin(GstElement *source, GstCaps *filter);

// An element that must be there, as GStreamer's own packages hold it. Throws StreamError.
GstElement *make_element(const char *factory);

}  // namespace nox::app

#endif  // NOX_VISUALS_SOURCES_DECODER_SOURCE_H_
