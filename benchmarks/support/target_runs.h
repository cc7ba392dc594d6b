// Runs one benchmark as it is and once more for each instruction set, "CASE/nox" and
// "CASE/nox:AVX2", so that the table shows what each of them gives.
#ifndef SUPPORT_TARGET_RUNS_H_
#define SUPPORT_TARGET_RUNS_H_

#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#define HWY_WANT_AVX3_DL  // as the kernels do
#include <hwy/highway.h>

namespace nox::bench {

// Lets the kernels use `target` only while it lives.
class ForcedTarget {
 public:
  explicit ForcedTarget(std::int64_t target) { hwy::SetSupportedTargetsForTest(target); }
  ~ForcedTarget() { hwy::SetSupportedTargetsForTest(0); }
  ForcedTarget(const ForcedTarget &) = delete;
  ForcedTarget &operator=(const ForcedTarget &) = delete;
};

// `run(state)` makes its input and times `state`'s loop.
template <typename Run>
void register_targets(const std::string &name, Run run) {
  benchmark::RegisterBenchmark((name + "/nox").c_str(), run);
  for (std::int64_t rest = hwy::SupportedTargets() & HWY_TARGETS; rest != 0; rest &= rest - 1) {
    const std::int64_t target = rest & -rest;
    benchmark::RegisterBenchmark((name + "/nox:" + hwy::TargetName(target)).c_str(),
                                 [run, target](benchmark::State &state) {
                                   const ForcedTarget forced(target);
                                   run(state);
                                 });
  }
}

}  // namespace nox::bench

#endif  // SUPPORT_TARGET_RUNS_H_
