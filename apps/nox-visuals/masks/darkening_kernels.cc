#include "nox-visuals/masks/darkening_kernels.h"

#include <cstddef>
#include <cstdint>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "nox-visuals/masks/darkening_kernels.cc"
#include <hwy/foreach_target.h>
// After foreach_target.h, which sets the target.
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace nox::app::masks {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

void DarkenRow(std::uint8_t *row, std::size_t samples, std::uint8_t darker, std::uint8_t black) {
  const hn::ScalableTag<std::uint8_t> d;
  const std::size_t lanes = hn::Lanes(d);
  const auto less = hn::Set(d, darker);
  const auto least = hn::Set(d, black);
  const auto darken = [&](std::uint8_t *at) HWY_ATTR {
    hn::StoreU(hn::Max(hn::SaturatedSub(hn::LoadU(d, at), less), least), d, at);
  };
  std::size_t x = 0;
  for (; x + lanes <= samples; x += lanes) darken(row + x);
  for (; x < samples; ++x) {
    const std::uint8_t rest = row[x] > darker ? static_cast<std::uint8_t>(row[x] - darker) : 0;
    row[x] = rest > black ? rest : black;
  }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace nox::app::masks
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace nox::app::masks {

HWY_EXPORT(DarkenRow);
void darken_row(std::uint8_t *row, std::size_t samples, std::uint8_t darker, std::uint8_t black) {
  HWY_DYNAMIC_DISPATCH(DarkenRow)(row, samples, darker, black);
}

}  // namespace nox::app::masks
#endif  // HWY_ONCE
