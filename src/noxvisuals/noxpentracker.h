// noxpentracker: finds a pen of light in a video and tells the pipeline where it is.
#ifndef NOXVISUALS_NOXPENTRACKER_H_
#define NOXVISUALS_NOXPENTRACKER_H_

#include <glib-object.h>

// The GType of the element; registered on first use.
GType nox_pen_tracker_get_type();

#endif  // NOXVISUALS_NOXPENTRACKER_H_
