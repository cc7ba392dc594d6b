// Which parts of a picture are hidden.
#ifndef NOX_VISUALS_MASKS_PICTURE_MASK_H_
#define NOX_VISUALS_MASKS_PICTURE_MASK_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace nox::app {

// A mask of more than this leaves too little to look at.
inline constexpr double kMostHidden = 1.0 / 3;

class PictureMask {
 public:
  // Hides nothing.
  PictureMask() = default;
  PictureMask(int width, int height);

  int width() const { return width_; }
  int height() const { return height_; }
  bool hidden(int x, int y) const { return hidden_[index(x, y)] != 0; }
  void hide(int x, int y) { hidden_[index(x, y)] = 1; }

  // Hides what another one of the same size hides.
  void add(const PictureMask &other);

  // The part of the picture that is hidden, 0 to 1; 0 without a picture.
  double share() const;

  // The same for a picture of another size: each pixel as the one here in whose place its middle
  // lies.
  PictureMask scaled(int width, int height) const;

 private:
  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
           static_cast<std::size_t>(x);
  }

  int width_ = 0;
  int height_ = 0;
  std::vector<std::uint8_t> hidden_;  // 1 or 0, row by row
};

}  // namespace nox::app

#endif  // NOX_VISUALS_MASKS_PICTURE_MASK_H_
