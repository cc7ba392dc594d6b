#include "nox-visuals/steps/one_euro_filter.h"

#include <cmath>
#include <numbers>

namespace nox::app {
namespace {

// The weight of a new sample in an exponential filter with this cutoff.
double weight(double cutoff, double rate) {
  const double tau = 1.0 / (2.0 * std::numbers::pi * cutoff);
  return 1.0 / (1.0 + tau * rate);
}

}  // namespace

double OneEuroFilter::filter(double value, std::int64_t time_ns) {
  if (!state_) {
    state_ = State{time_ns, value, 0.0};
    return value;
  }
  if (time_ns > state_->time_ns) {
    rate_ = 1e9 / static_cast<double>(time_ns - state_->time_ns);
    state_->time_ns = time_ns;
  }
  // From the last filtered value, as in the paper, not from the last one as it came.
  const double derivative = (value - state_->value) * rate_;
  state_->derivative +=
      weight(constants_.derivative_cutoff, rate_) * (derivative - state_->derivative);
  const double cutoff = constants_.min_cutoff + constants_.beta * std::abs(state_->derivative);
  state_->value += weight(cutoff, rate_) * (value - state_->value);
  return state_->value;
}

}  // namespace nox::app
