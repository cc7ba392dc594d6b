#include "vectorizer/vectorizer.h"

#include "vectorizer/frame_sweep.h"
#include "vectorizer/mask_counters.h"
#include "video/aligned_alloc.h"

namespace {

// The shape that edges are closed with. The sweep closes by the same shape, with kernels of its
// own.
constexpr std::uint8_t kCross[] = {
    0, 1, 0,  //
    1, 1, 1,  //
    0, 1, 0,  //
};
constexpr std::int32_t kCrossSize = 3;

void drop_history(VectorizerState *state) {
  mask_ring_free(state->ring_short);
  mask_ring_free(state->ring_long);
  delete state->sweep;
  state->ring_short = nullptr;
  state->ring_long = nullptr;
  state->sweep = nullptr;
}

void start_history(VectorizerState *state, std::int32_t width, std::int32_t height) {
  drop_history(state);
  state->width = width;
  state->height = height;
  state->ring_short = mask_ring_new(width, height, kVectorizerShortFrames);
  state->ring_long = mask_ring_new(width, height, kVectorizerLongFrames);
  state->sweep = new nox::vectorizer::FrameSweep(width, height);
}

}  // namespace

VectorizerState *vectorizer_new() {
  auto *state =
      static_cast<VectorizerState *>(nox_aligned_alloc(kNoxAlignment, sizeof(VectorizerState)));
  *state = VectorizerState{};
  state->element = structuring_element_new(kCross, kCrossSize, kCrossSize);
  return state;
}

void vectorizer_free(VectorizerState *state) {
  if (state == nullptr) return;
  drop_history(state);
  structuring_element_free(state->element);
  nox_aligned_free(state);
}

std::int32_t vectorizer_process(VectorizerState *state, const NoxVideoFrame *in,
                                const NoxVideoFrame *out) {
  if (in->width < 1 || in->height < 1) return 1;
  if (in->width != state->width || in->height != state->height) {
    start_history(state, in->width, in->height);
  }
  using nox::vectorizer::MaskCounters;
  MaskCounters &in_all =
      nox::vectorizer::begin_compact_frame(state->ring_short, MaskCounters::Question::kSetInAll);
  MaskCounters &in_any =
      nox::vectorizer::begin_compact_frame(state->ring_long, MaskCounters::Question::kSetInAny);
  state->sweep->draw(*in, *out, in_all, in_any);
  return 1;
}
