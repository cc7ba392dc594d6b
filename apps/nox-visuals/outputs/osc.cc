#include "nox-visuals/outputs/osc.h"

#include <utility>

#include "nox-visuals/outputs/osc_packet.h"

namespace nox::app {

Osc::Osc(const Address &to, const std::string &stream, Say say)
    : prefix_("/nox/" + stream + "/"), datagrams_("--osc", to, std::move(say)) {}

void Osc::take(const Observation &observation) {
  if (const auto *pen = std::get_if<Pen>(&observation)) send_pen(*pen);
  if (const auto *loss = std::get_if<Loss>(&observation)) send_loss(*loss);
}

void Osc::send_pen(const Pen &pen) {
  const auto x = static_cast<float>(pen.at.x);
  const auto y = static_cast<float>(pen.at.y);
  const std::int32_t pressed = pen.pressed ? 1 : 0;
  datagrams_.send(osc_packet({prefix_ + "pen", {x, y, pressed}}));
  datagrams_.send(osc_packet({prefix_ + "x", {x}}));
  datagrams_.send(osc_packet({prefix_ + "y", {y}}));
  datagrams_.send(osc_packet({prefix_ + "pressed", {pressed}}));
}

void Osc::send_loss(const Loss &loss) {
  datagrams_.send(osc_packet({prefix_ + "lost", {}}));
  // A tool that knows only the flat addresses would hold the pen down until it comes back.
  if (loss.pressed) datagrams_.send(osc_packet({prefix_ + "pressed", {0}}));
}

}  // namespace nox::app
