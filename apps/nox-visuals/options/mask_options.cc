#include "nox-visuals/options/mask_options.h"

#include <cmath>

namespace nox::app {
namespace {

std::string check_darken(const std::string &word) {
  double number = 0;
  if (word == "auto") return "";
  if (read_number(word, &number) && number >= 0 && number <= 255 && std::trunc(number) == number) {
    return "";
  }
  return "expected auto or a number from 0 to 255, not '" + word + "'";
}

}  // namespace

void add_mask_options(Command *command, MaskOptions *options) {
  command->option("--mask", &options->mask, "a picture: what is black is ignored").value("F.png");
  const Option learn =
      command->option("--mask-learn", &options->learn_seconds, "learns one; show no pen then")
          .value("SECONDS")
          .positive();
  command->option("--mask-output", &options->output, "keeps the mask that was learned")
      .value("F.png")
      .needs(learn);
  command->option("--darken", &options->darken, "takes N from luma, for bright walls")
      .value("N|auto")
      .check(check_darken);
}

}  // namespace nox::app
