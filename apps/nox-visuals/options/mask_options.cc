#include "nox-visuals/options/mask_options.h"

namespace nox::app {
namespace {

std::string check_darken(const std::string &word) {
  int number = 0;
  if (word == "auto") return "";
  if (CLI::detail::lexical_cast(word, number) && number >= 0 && number <= 255) return "";
  return "expected auto or a number from 0 to 255, not '" + word + "'";
}

}  // namespace

void add_mask_options(CLI::App *command, MaskOptions *options) {
  command->add_option("--mask", options->mask, "a picture: what is black is ignored")
      ->option_text("F.png");
  CLI::Option *learn =
      command->add_option("--mask-learn", options->learn_seconds, "learns one; show no pen then")
          ->option_text("SECONDS")
          ->check(CLI::PositiveNumber);
  command->add_option("--mask-output", options->output, "keeps the mask that was learned")
      ->option_text("F.png")
      ->needs(learn);
  command->add_option("--darken", options->darken, "takes N from luma, for bright walls")
      ->option_text("N|auto")
      ->check(CLI::Validator(check_darken, "", "darken"));
}

}  // namespace nox::app
