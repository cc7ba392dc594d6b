// The size of a QR code, told by how many codewords of data it holds.
#ifndef NOX_VISUALS_READERS_QR_SIZE_H_
#define NOX_VISUALS_READERS_QR_SIZE_H_

#include <string_view>

namespace nox::app {

// Modules on a side of the code that holds `codewords` at the level of error correction "L", "M",
// "Q" or "H"; 0 when no code does.
int qr_size(std::string_view level, int codewords);

}  // namespace nox::app

#endif  // NOX_VISUALS_READERS_QR_SIZE_H_
