// The longest exposure at which a scene without the pen stays below the tracker's threshold: what
// then is above it is the pen.
#ifndef NOX_VISUALS_TUNE_EXPOSURE_SEARCH_H_
#define NOX_VISUALS_TUNE_EXPOSURE_SEARCH_H_

#include <cstdint>
#include <functional>

#include "nox-visuals/tune/camera_pictures.h"
#include "nox-visuals/tune/light.h"
#include "nox-visuals/tune/settling.h"

namespace nox::app {

// Of the samples of any plane.
inline constexpr double kShareLeft = 0.001;

struct ExposureRange {
  std::int64_t shortest = 0, longest = 0, step = 1;
};

enum class ExposureOutcome {
  kFound,
  kDark,      // the longest will do
  kBright,    // even the shortest leaves more, and is set
  kStuck,     // the camera keeps one value whatever it is told
  kNotShown,  // the camera says that it follows, and the pictures do not
};

struct ExposureFound {
  ExposureOutcome outcome = ExposureOutcome::kFound;
  std::int64_t value = 0;  // that the camera has now
  Light light;             // with it
};

class ExposureSearch {
 public:
  // Sets an exposure, and returns the one that the camera says it has then.
  using Set = std::function<std::int64_t(std::int64_t value)>;

  ExposureSearch(CameraPictures *pictures, Settling *settling, Set set);

  // Ends with the exposure set that it returns. Brightness is taken to rise with the exposure; that
  // the colours of a lamp fade again when it washes out does no harm, since its luma does not.
  ExposureFound run(const ExposureRange &range);

 private:
  ExposureFound try_value(std::int64_t value);
  ExposureFound bisect(const ExposureRange &range);
  ExposureFound confirm(ExposureFound found, const ExposureRange &range);

  CameraPictures *pictures_;
  Settling *settling_;
  Set set_;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_TUNE_EXPOSURE_SEARCH_H_
