/* Keeps away from a video element what it would answer with the end of the process: caps that tell
 * no picture, and buffers that hold no picture of the caps. For hosts that take streams from
 * whoever sends them. */
#ifndef VIDEO_GUARD_H_
#define VIDEO_GUARD_H_

#include <gst/gst.h>

G_BEGIN_DECLS

/* Guards the sink pad of an element, for as long as the pad lives. What is kept away is dropped,
 * and each time an error of the element's is posted on its bus: the host may stop the stream, or go
 * on with the next frame. To be called before the stream starts. */
void video_guard_add(GstElement *element);

G_END_DECLS

#endif /* VIDEO_GUARD_H_ */
