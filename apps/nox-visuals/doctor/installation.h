// Whether what the program needs is installed.
#ifndef NOX_VISUALS_DOCTOR_INSTALLATION_H_
#define NOX_VISUALS_DOCTOR_INSTALLATION_H_

#include "nox-visuals/doctor/finding.h"

namespace nox::app {

// The module and where it was found, versions, the libraries that the build left out, and for each
// use the elements of GStreamer that it needs, with the Debian package of those that are missing.
Findings look_at_installation();

}  // namespace nox::app

#endif  // NOX_VISUALS_DOCTOR_INSTALLATION_H_
