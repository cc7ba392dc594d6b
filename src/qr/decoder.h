// What quirc finds in a gray picture.
#ifndef QR_DECODER_H_
#define QR_DECODER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct quirc;

namespace nox::qr {

// The gray samples of a picture, not owned. Rows may be padded.
struct Luma {
  const std::uint8_t *samples = nullptr;
  std::ptrdiff_t stride = 0;  // from one row to the next, in bytes
  std::int32_t width = 0;
  std::int32_t height = 0;
};

struct Corner {
  std::int32_t x = 0;
  std::int32_t y = 0;
};

// A code that was found, whether or not it could be read.
struct Code {
  std::array<Corner, 4>
      corners;                  // in pixels of the picture, clockwise from the code's own top left
  std::int32_t size = 0;        // modules on a side
  std::int32_t version = 0;     // 1 to 40; 0 when the code was not read
  std::string payload;          // any bytes, NUL among them; empty when the code was not read
  const char *error = nullptr;  // why it was not read, as a text that lives for ever; else null
};

enum class Mirrored { kNotRead, kRead };

class Decoder {
 public:
  // Codes seen in a mirror are read only where that is asked for: quirc itself does not.
  explicit Decoder(Mirrored mirrored = Mirrored::kNotRead);
  ~Decoder();
  Decoder(const Decoder &) = delete;
  Decoder &operator=(const Decoder &) = delete;

  // Looks for codes and reads them. They stay in codes(), in quirc's index order, until the next
  // call. False when there is no memory for a picture of this size: codes() is then empty.
  bool decode(const Luma &luma);

  const std::vector<Code> &codes() const { return codes_; }

 private:
  struct Destroy {
    void operator()(quirc *decoder) const;
  };

  Mirrored mirrored_;
  std::unique_ptr<quirc, Destroy> quirc_;
  std::vector<Code> codes_;
};

}  // namespace nox::qr

#endif  // QR_DECODER_H_
