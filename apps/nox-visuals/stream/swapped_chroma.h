// Exchanges the meaning of the two chroma planes: for a pen that glows red while it hovers and blue
// while it is pressed.
#ifndef NOX_VISUALS_STREAM_SWAPPED_CHROMA_H_
#define NOX_VISUALS_STREAM_SWAPPED_CHROMA_H_

#include <gst/gst.h>

namespace nox::app {

// From now on the I420 or A420 buffers that come to `sink` tell of their planes U and V the other
// way round. No sample is copied: only what a buffer says of where its planes lie is exchanged.
void swap_chroma(GstPad *sink);

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_SWAPPED_CHROMA_H_
