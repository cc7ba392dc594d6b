// The 1-euro filter (Casiez, Roussel and Vogel, 2012): a low-pass whose cutoff rises with speed.
#ifndef NOX_VISUALS_STEPS_ONE_EURO_FILTER_H_
#define NOX_VISUALS_STEPS_ONE_EURO_FILTER_H_

#include <cstdint>
#include <optional>

namespace nox::app {

struct OneEuroConstants {
  double min_cutoff = 0;         // Hz: lower is calmer at rest
  double beta = 0;               // Hz for a speed of one unit a second: higher lags less in motion
  double derivative_cutoff = 0;  // Hz, of the filter on the speed
};

// One value over time, from one time stamp to the next.
class OneEuroFilter {
 public:
  explicit OneEuroFilter(const OneEuroConstants &constants) : constants_(constants) {}

  // A time that is not later than the last one counts as one step of the last length.
  double filter(double value, std::int64_t time_ns);

  void reset() { state_.reset(); }

 private:
  struct State {
    std::int64_t time_ns;
    double value;
    double derivative;
  };

  OneEuroConstants constants_;
  std::optional<State> state_;
  double rate_ = 30;  // Hz: until two time stamps have told it
};

}  // namespace nox::app

#endif  // NOX_VISUALS_STEPS_ONE_EURO_FILTER_H_
