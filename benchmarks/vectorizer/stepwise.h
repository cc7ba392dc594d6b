// The vectorizer as one pass after another over whole planes and masks.
#ifndef VECTORIZER_STEPWISE_H_
#define VECTORIZER_STEPWISE_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "masks/morphology.h"
#include "vectorizer/mask_ring.h"
#include "video/nox_video_frame.h"

namespace nox::bench {

// Scalar gradients and square roots, rings of 600 masks, an alpha plane and an overlay.
class StepwiseVectorizer {
 public:
  // With every slot of both rings filled, as behind the first 500 frames.
  StepwiseVectorizer(std::int32_t width, std::int32_t height);
  ~StepwiseVectorizer();
  StepwiseVectorizer(const StepwiseVectorizer &) = delete;
  StepwiseVectorizer &operator=(const StepwiseVectorizer &) = delete;

  void process(const NoxVideoFrame &frame);

 private:
  using Plane = std::vector<std::uint8_t>;

  void find_magnitude(const NoxVideoFrame &frame);
  void close_edges(BitMask *closed) const;
  void draw(const NoxVideoFrame &frame, const BitMask *shown) const;

  MaskRing *short_;
  MaskRing *long_;
  StructuringElement *cross_;
  Plane gx_, gy_, magnitude_;
};

}  // namespace nox::bench

#endif  // VECTORIZER_STEPWISE_H_
