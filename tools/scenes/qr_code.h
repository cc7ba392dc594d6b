// QR codes to put into a scene.
#ifndef SCENES_QR_CODE_H_
#define SCENES_QR_CODE_H_

#include <cstddef>
#include <string>
#include <vector>

#include "scenes/canvas.h"

namespace nox::scenes {

// The modules of one QR code, in the smallest version that holds the text, error correction level
// M.
class QrCode {
 public:
  // Throws std::invalid_argument when no version holds `text` (over 2,331 bytes), or when it is
  // empty.
  explicit QrCode(const std::string &text);

  int size() const { return size_; }  // modules on a side, without the quiet zone
  bool dark(int column, int row) const {
    return dark_[static_cast<std::size_t>(row) * static_cast<std::size_t>(size_) +
                 static_cast<std::size_t>(column)];
  }

 private:
  int size_;
  std::vector<bool> dark_;
};

// Draws the code, black on a white card with a quiet zone of four modules, around `centre`;
// `module` is the side of a module in pixels and `angle` turns the card clockwise, in radians.
void draw_qr_code(Canvas *canvas, const QrCode &code, Point centre, float module, float angle);

}  // namespace nox::scenes

#endif  // SCENES_QR_CODE_H_
