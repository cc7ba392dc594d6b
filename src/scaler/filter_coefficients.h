// The filter taps of both polyphase scalers: 16 phases of fixed-point coefficients.
#ifndef SCALER_FILTER_COEFFICIENTS_H_
#define SCALER_FILTER_COEFFICIENTS_H_

#include <cstdint>

namespace nox::scaler {

inline constexpr std::int32_t kPhases = 16;  // sub-sample positions between two source samples
inline constexpr std::int32_t kMaxTaps = 32;

using KernelFunction = double (*)(double);

struct FilterCoefficients {
  std::int32_t fixed_taps[kPhases][kMaxTaps];  // the first `taps` of a phase sum to 1 << shift
  double float_taps[kPhases][kMaxTaps];  // the normalised taps, where corrected the corrected ones
  std::int32_t taps;
  std::int32_t phases;  // kPhases
  std::int32_t shift;   // fixed-point precision of one pass
};

// The taps of a filter for `ratio` input samples per output sample: the kernel is stretched by the
// ratio where that is at least 1 and used as it is where the picture is enlarged. Tap t of phase p
// weighs the sample at t + 1 - taps / 2 from the integer part of the source position, p being the
// fractional part in sixteenths. Unused slots are 0.
FilterCoefficients make_filter_coefficients(double ratio, std::int32_t taps, KernelFunction kernel);

}  // namespace nox::scaler

#endif  // SCALER_FILTER_COEFFICIENTS_H_
