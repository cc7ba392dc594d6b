#include "nox-visuals/steps/first_code.h"

#include <utility>

namespace nox::app {

FirstCode::FirstCode(std::function<void()> stop) : stop_(std::move(stop)) {}

void FirstCode::take(const Observation &in, std::vector<Observation> *out) {
  if (!std::holds_alternative<Code>(in)) {
    out->push_back(in);
  } else if (!std::exchange(seen_, true)) {
    out->push_back(in);
    stop_();
  }
}

}  // namespace nox::app
