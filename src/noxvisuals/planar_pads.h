// The pads of the elements that take planar 4:2:0 video in any size.
#ifndef NOXVISUALS_PLANAR_PADS_H_
#define NOXVISUALS_PLANAR_PADS_H_

#include <gst/gst.h>

namespace nox::noxvisuals {

inline constexpr const char *kPlanarCaps =
    "video/x-raw, format = (string) {I420, A420}, width = (int) [ 1, max ], height = (int) [ 1, "
    "max ], framerate = (fraction) [ 0, max ]";

// A pad that is told caps and asks for allocations as its neighbour on the other side does.
inline GstPad *new_proxy_pad(GstStaticPadTemplate *pad_template, const char *name) {
  GstPad *pad = gst_pad_new_from_static_template(pad_template, name);
  GST_PAD_SET_PROXY_CAPS(pad);
  GST_PAD_SET_PROXY_ALLOCATION(pad);
  return pad;
}

}  // namespace nox::noxvisuals

#endif  // NOXVISUALS_PLANAR_PADS_H_
