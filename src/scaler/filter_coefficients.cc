#include "scaler/filter_coefficients.h"

#include <cmath>
#include <numbers>

#include "scaler/scaler.h"

namespace nox::scaler {
namespace {

constexpr double kSupport = 2.0;      // of both kernels, to either side
constexpr double kNegligible = 1e-7;  // a smaller magnitude counts as 0

double sinc(double u) {
  if (u == 0.0) return 1.0;
  const double angle = std::numbers::pi * u;
  return std::sin(angle) / angle;
}

double without_dust(double value) {
  return std::fabs(value) < kNegligible ? 0.0 : value;
}

void sample_phase(double *taps, std::int32_t count, std::int32_t phase, double step,
                  KernelFunction kernel) {
  const double first = 1.0 - count / 2 - phase * (1.0 / kPhases);
  double sum = 0.0;
  for (std::int32_t t = 0; t < count; ++t) {
    taps[t] = kernel((t + first) * step);
    sum += taps[t];
  }
  const double scale = 1.0 / sum;
  for (std::int32_t t = 0; t < count; ++t) taps[t] *= scale;
}

std::int32_t round_taps(std::int32_t *fixed, const double *taps, std::int32_t count, double one) {
  std::int32_t sum = 0;
  for (std::int32_t t = 0; t < count; ++t) {
    fixed[t] = static_cast<std::int32_t>(std::floor(taps[t] * one + 0.5));
    sum += fixed[t];
  }
  return sum;
}

// The tap whose exact value lies furthest from its rounded one in the direction of `sign`, the
// first of equals.
std::int32_t furthest_tap(const std::int32_t *fixed, const double *taps, std::int32_t count,
                          double one, double sign) {
  std::int32_t furthest = 0;
  double largest = sign * (taps[0] * one - fixed[0]);
  for (std::int32_t t = 1; t < count; ++t) {
    const double distance = sign * (taps[t] * one - fixed[t]);
    if (distance > largest) {
      largest = distance;
      furthest = t;
    }
  }
  return furthest;
}

// Rounds a phase so that it sums to `one` exactly. A tap that was moved becomes exact, so that the
// next correction goes to another one.
void fix_phase(std::int32_t *fixed, double *taps, std::int32_t count, std::int32_t one) {
  for (;;) {
    const std::int32_t sum = round_taps(fixed, taps, count, one);
    if (sum == one) return;
    const std::int32_t step = sum < one ? 1 : -1;
    const std::int32_t t = furthest_tap(fixed, taps, count, one, step);
    taps[t] = static_cast<double>(fixed[t] + step) / one;
  }
}

}  // namespace

FilterCoefficients make_filter_coefficients(double ratio, std::int32_t taps,
                                            KernelFunction kernel) {
  FilterCoefficients table = {};
  table.taps = taps;
  table.phases = kPhases;
  table.shift = taps == 8 ? 6 : 7;  // 8 taps of 6 bits keep every sum of a pass within 16 bits
  const float stretch = static_cast<float>(ratio);  // single precision is part of the result
  const double step = stretch < 1.0F ? 1.0 : 1.0 / static_cast<double>(stretch);
  for (std::int32_t p = 0; p < kPhases; ++p) {
    sample_phase(table.float_taps[p], taps, p, step, kernel);
    fix_phase(table.fixed_taps[p], table.float_taps[p], taps, 1 << table.shift);
  }
  return table;
}

}  // namespace nox::scaler

double scaler_kernel_lanczos2(double x) {
  if (std::fabs(x) > nox::scaler::kSupport) return 0.0;
  return nox::scaler::without_dust(nox::scaler::sinc(x) * nox::scaler::sinc(x / 2.0));
}

double scaler_kernel_cubic(double x) {
  const double a = std::fabs(x);
  if (a > nox::scaler::kSupport) return 0.0;
  const double value = a <= 1.0 ? 7.0 * a * a * a - 12.0 * a * a + 16.0 / 3.0
                                : -7.0 / 3.0 * a * a * a + 12.0 * a * a - 20.0 * a + 32.0 / 3.0;
  return nox::scaler::without_dust(value);
}
