#include "scenes/qr_code.h"

#include <qrencode.h>

#include <cmath>
#include <memory>
#include <stdexcept>

namespace nox::scenes {
namespace {

constexpr int kQuietZone = 4;   // modules on every side, as readers expect
constexpr int kSubsamples = 3;  // per pixel and axis, against jagged module borders
constexpr Color kPaper{245, 245, 240};
constexpr Color kInk{20, 20, 25};

struct CodeDeleter {
  void operator()(QRcode *code) const { QRcode_free(code); }
};

// Where on the card a pixel lies, in modules from the code's top left corner.
class CardGrid {
 public:
  CardGrid(Point centre, float module, float angle, int size)
      : centre_(centre),
        cosine_(std::cos(angle) / module),
        sine_(std::sin(angle) / module),
        half_(static_cast<float>(size) / 2.0F) {}

  Point operator()(float x, float y) const {
    const float dx = x - centre_.x;
    const float dy = y - centre_.y;
    return {dx * cosine_ + dy * sine_ + half_, dy * cosine_ - dx * sine_ + half_};
  }

 private:
  Point centre_;
  float cosine_;
  float sine_;
  float half_;
};

bool on_card(const QrCode &code, Point at) {
  const auto low = static_cast<float>(-kQuietZone);
  const auto high = static_cast<float>(code.size() + kQuietZone);
  return at.x >= low && at.y >= low && at.x < high && at.y < high;
}

bool dark_at(const QrCode &code, Point at) {
  const int column = static_cast<int>(std::floor(at.x));
  const int row = static_cast<int>(std::floor(at.y));
  return column >= 0 && row >= 0 && column < code.size() && row < code.size() &&
         code.dark(column, row);
}

void draw_pixel(Canvas *canvas, const QrCode &code, const CardGrid &grid, int x, int y) {
  int card = 0;
  int ink = 0;
  for (int i = 0; i < kSubsamples * kSubsamples; ++i) {
    const float step = 1.0F / kSubsamples;
    const Point at =
        grid(static_cast<float>(x) + (static_cast<float>(i % kSubsamples) + 0.5F) * step,
             static_cast<float>(y) + (static_cast<float>(i / kSubsamples) + 0.5F) * step);
    if (!on_card(code, at)) continue;
    ++card;
    if (dark_at(code, at)) ++ink;
  }
  constexpr float kAll = kSubsamples * kSubsamples;
  if (card == 0) return;
  canvas->mix(x, y, kPaper, static_cast<float>(card) / kAll);
  canvas->mix(x, y, kInk, static_cast<float>(ink) / kAll);
}

}  // namespace

QrCode::QrCode(const std::string &text) {
  const std::unique_ptr<QRcode, CodeDeleter> code(
      QRcode_encodeData(static_cast<int>(text.size()),
                        reinterpret_cast<const unsigned char *>(text.data()), 0, QR_ECLEVEL_M));
  if (code == nullptr) throw std::invalid_argument("no QR code holds this text: " + text);
  size_ = code->width;
  for (int i = 0; i < size_ * size_; ++i) dark_.push_back((code->data[i] & 1) != 0);
}

void draw_qr_code(Canvas *canvas, const QrCode &code, Point centre, float module, float angle) {
  const CardGrid grid(centre, module, angle, code.size());
  // Half a diagonal of the card reaches its corners at any angle.
  const float reach = module * static_cast<float>(code.size() + 2 * kQuietZone) * 0.7072F + 1.0F;
  for (int y = static_cast<int>(centre.y - reach); y <= static_cast<int>(centre.y + reach); ++y) {
    for (int x = static_cast<int>(centre.x - reach); x <= static_cast<int>(centre.x + reach); ++x) {
      draw_pixel(canvas, code, grid, x, y);
    }
  }
}

}  // namespace nox::scenes
