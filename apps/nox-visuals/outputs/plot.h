// The way of the pen as a picture.
#ifndef NOX_VISUALS_OUTPUTS_PLOT_H_
#define NOX_VISUALS_OUTPUTS_PLOT_H_

#include <memory>
#include <optional>
#include <string>

#include "nox-visuals/outputs/output.h"

namespace nox::app {

// What was written is drawn strong, hovering thin and pale, as they come; the file appears whole,
// at the end. F.png or F.svg.
class Plot : public Output {
 public:
  // Throws OutputError when the name ends otherwise or nothing can be written there.
  Plot(const std::string &file, Say say);
  ~Plot() override;

  void take(const Observation &observation) override;
  bool broken() const override { return broken_; }

 private:
  class Canvas;

  void follow(const Pen &pen);
  void save();

  Say say_;
  std::unique_ptr<Canvas> canvas_;
  std::optional<Pen> last_;  // up to where it is drawn
  bool broken_ = false;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_PLOT_H_
