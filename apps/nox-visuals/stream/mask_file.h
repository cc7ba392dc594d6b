// Masks as pictures: black is what they hide.
#ifndef NOX_VISUALS_STREAM_MASK_FILE_H_
#define NOX_VISUALS_STREAM_MASK_FILE_H_

#include <string>

#include "nox-visuals/masks/picture_mask.h"

namespace nox::app {

// From a picture of any format that GStreamer decodes: what is darker than half of white is hidden.
// Throws UsageError for a file that cannot be read or is no picture.
PictureMask read_mask(const std::string &path);

// Writes a PNG file to a descriptor, which stays open. False when that is not possible.
bool write_mask(const PictureMask &mask, int descriptor);

}  // namespace nox::app

#endif  // NOX_VISUALS_STREAM_MASK_FILE_H_
