// Masks, blanking and darkening on plain frames.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "nox-visuals/masks/auto_darkening.h"
#include "nox-visuals/masks/blanking.h"
#include "nox-visuals/masks/mask_learner.h"
#include "nox-visuals/masks/picture_mask.h"

namespace {

using nox::app::AutoDarkening;
using nox::app::Blanking;
using nox::app::MaskLearner;
using nox::app::PictureMask;

// An I420 frame of one colour whose rows are padded with a byte that nobody may touch.
class Frame {
 public:
  Frame(int width, int height, std::uint8_t luma = 100, std::uint8_t u = 90, std::uint8_t v = 80) {
    frame_.width = width;
    frame_.height = height;
    frame_.n_planes = 3;
    const std::uint8_t value[] = {luma, u, v};
    for (int plane = 0; plane < 3; ++plane) {
      const int shift = plane == 0 ? 0 : 1;
      frame_.plane_widths[plane] = (width + shift) >> shift;
      frame_.plane_heights[plane] = (height + shift) >> shift;
      frame_.strides[plane] = frame_.plane_widths[plane] + 3;
      bytes_[plane].assign(
          static_cast<std::size_t>(frame_.strides[plane] * frame_.plane_heights[plane]), kPadding);
      frame_.planes[plane] = bytes_[plane].data();
      box(plane, 0, 0, frame_.plane_widths[plane], frame_.plane_heights[plane], value[plane]);
    }
  }

  NoxVideoFrame *get() { return &frame_; }

  std::uint8_t &at(int plane, int x, int y) {
    return bytes_[plane][static_cast<std::size_t>(y * frame_.strides[plane] + x)];
  }

  void box(int plane, int left, int top, int right, int bottom, std::uint8_t value) {
    for (int y = top; y < bottom; ++y) {
      for (int x = left; x < right; ++x) at(plane, x, y) = value;
    }
  }

  // A spot in a glow, as big as a pen's; in a frame of 448 by 252.
  void pen(int x, int y, bool pressed) {
    box(pressed ? 2 : 1, (x - 8) / 2, (y - 8) / 2, (x + 8) / 2, (y + 8) / 2, 230);
    box(0, x - 2, y - 2, x + 2, y + 2, 255);
  }

  bool padding_is_whole() {
    for (int plane = 0; plane < 3; ++plane) {
      for (int y = 0; y < frame_.plane_heights[plane]; ++y) {
        for (int x = frame_.plane_widths[plane]; x < frame_.strides[plane]; ++x) {
          if (at(plane, x, y) != kPadding) return false;
        }
      }
    }
    return true;
  }

 private:
  static constexpr std::uint8_t kPadding = 7;

  NoxVideoFrame frame_{};
  std::vector<std::uint8_t> bytes_[3];
};

TEST(PictureMask, SaysItsShare) {
  PictureMask mask(4, 3);
  EXPECT_EQ(mask.share(), 0);
  mask.hide(1, 2);
  mask.hide(1, 2);
  mask.hide(3, 0);
  EXPECT_DOUBLE_EQ(mask.share(), 2.0 / 12);
  EXPECT_EQ(PictureMask().share(), 0);
}

TEST(PictureMask, IsScaled) {
  PictureMask mask(4, 2);
  mask.hide(1, 0);
  mask.hide(3, 1);
  const PictureMask large = mask.scaled(8, 4);
  EXPECT_DOUBLE_EQ(large.share(), mask.share());
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 8; ++x) EXPECT_EQ(large.hidden(x, y), mask.hidden(x / 2, y / 2));
  }
  const PictureMask same = large.scaled(4, 2);
  for (int x = 0; x < 4; ++x) EXPECT_EQ(same.hidden(x, 0), x == 1);
}

TEST(PictureMask, AddsAnother) {
  PictureMask one(2, 1);
  PictureMask other(2, 1);
  other.hide(1, 0);
  one.add(other);
  EXPECT_FALSE(one.hidden(0, 0));
  EXPECT_TRUE(one.hidden(1, 0));
}

// Whatever the size, every pixel is black where it is hidden and as it was elsewhere.
TEST(Blanking, MakesHiddenPixelsBlack) {
  for (const auto &[width, height] : {std::pair(16, 12), {17, 11}, {1, 1}, {2, 7}}) {
    PictureMask mask(width, height);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        if ((x / 3 + y / 2) % 2 == 0) mask.hide(x, y);
      }
    }
    for (const int darker : {0, 40, 90}) {
      Frame frame(width, height);
      Blanking(mask).apply(frame.get(), static_cast<std::uint8_t>(darker));
      const int open = darker == 90 ? 16 : 100 - darker;
      for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
          ASSERT_EQ(frame.at(0, x, y), mask.hidden(x, y) ? 16 : open);
          if (!mask.hidden(x, y)) continue;
          ASSERT_EQ(frame.at(1, x / 2, y / 2), 128);
          ASSERT_EQ(frame.at(2, x / 2, y / 2), 128);
        }
      }
      EXPECT_TRUE(frame.padding_is_whole());
    }
  }
}

TEST(Blanking, LeavesColoursThatAreNotHidden) {
  PictureMask mask(8, 8);
  mask.hide(3, 3);
  Frame frame(8, 8);
  Blanking(mask).apply(frame.get(), 0);
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 4; ++x) EXPECT_EQ(frame.at(1, x, y), x == 1 && y == 1 ? 128 : 90);
  }
}

// A mask of another size than the frame's touches nothing but samples.
TEST(Blanking, StaysInASmallerFrame) {
  PictureMask mask(20, 20);
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 20; ++x) mask.hide(x, y);
  }
  Frame frame(9, 5);
  Blanking(mask).apply(frame.get(), 10);
  EXPECT_EQ(frame.at(0, 8, 4), 16);
  EXPECT_EQ(frame.at(2, 4, 2), 128);
  EXPECT_TRUE(frame.padding_is_whole());
}

TEST(AutoDarkening, BringsAllButAHundredthTo160) {
  Frame frame(100, 100, 190);
  AutoDarkening rule;
  rule.look(*frame.get(), false);
  EXPECT_EQ(rule.level(), 30);
  frame.box(0, 0, 0, 10, 10, 255);  // a hundredth of it
  AutoDarkening other;
  other.look(*frame.get(), false);
  EXPECT_EQ(other.level(), 30);
  frame.box(0, 50, 50, 51, 51, 255);
  AutoDarkening more;
  more.look(*frame.get(), false);
  EXPECT_EQ(more.level(), 50);
}

TEST(AutoDarkening, LeavesADarkScene) {
  Frame frame(100, 100, 120);
  AutoDarkening rule;
  rule.look(*frame.get(), false);
  EXPECT_EQ(rule.level(), 0);
}

TEST(AutoDarkening, GoesSlowlyAndNeverWhileAPenIsPressed) {
  Frame dark(64, 64, 100);
  Frame bright(64, 64, 250);
  AutoDarkening rule;
  rule.look(*dark.get(), false);
  for (int i = 1; i <= 90; ++i) rule.look(*bright.get(), false);
  EXPECT_EQ(rule.level(), 3);
  for (int i = 1; i <= 90; ++i) rule.look(*bright.get(), true);
  EXPECT_EQ(rule.level(), 3);
}

constexpr int kWidth = 448;
constexpr int kHeight = 252;

TEST(MaskLearner, HidesColoursWithAMargin) {
  Frame frame(kWidth, kHeight, 60, 128, 128);
  frame.box(1, 50, 40, 60, 50, 220);  // pixels 100 to 120 across and 80 to 100 down
  frame.box(0, 300, 100, 420, 200, 235);
  MaskLearner learner;
  for (int i = 0; i < 40; ++i) learner.look(*frame.get(), i >= 20);
  const PictureMask mask = learner.mask();
  EXPECT_EQ(mask.width(), kWidth);
  EXPECT_TRUE(mask.hidden(110, 90));
  EXPECT_TRUE(mask.hidden(98, 78));
  EXPECT_FALSE(mask.hidden(92, 90));
  EXPECT_FALSE(mask.hidden(128, 90));
  EXPECT_FALSE(mask.hidden(360, 150));  // a white wall is not coloured
  EXPECT_FALSE(learner.saw_moving_pen());
}

TEST(MaskLearner, AColourInFewFramesIsNotHidden) {
  Frame grey(kWidth, kHeight, 60, 128, 128);
  Frame blue(kWidth, kHeight, 60, 128, 128);
  blue.box(1, 50, 40, 60, 50, 220);
  MaskLearner seldom;
  MaskLearner often;
  for (int i = 0; i < 100; ++i) {
    seldom.look(i < 1 ? *blue.get() : *grey.get(), false);
    often.look(i < 2 ? *blue.get() : *grey.get(), false);
  }
  EXPECT_EQ(seldom.mask().share(), 0);
  EXPECT_GT(often.mask().share(), 0);
}

// Seen too seldom to count as coloured: then it is hidden because it is taken for a pen.
TEST(MaskLearner, WhatIsStillAPenIsHidden) {
  Frame grey(kWidth, kHeight, 60, 128, 128);
  Frame flash(kWidth, kHeight, 60, 128, 128);
  flash.pen(200, 120, false);
  MaskLearner learner;
  for (int i = 0; i < 200; ++i) learner.look(i == 150 ? *flash.get() : *grey.get(), i >= 100);
  EXPECT_TRUE(learner.mask().hidden(200, 120));
  EXPECT_LT(learner.mask().share(), 0.01);
  EXPECT_FALSE(learner.saw_moving_pen());
}

TEST(MaskLearner, APenThatMovesIsNoticed) {
  MaskLearner learner;
  for (int i = 0; i < 40; ++i) {
    Frame frame(kWidth, kHeight, 60, 128, 128);
    frame.pen(60 + 4 * i, 120, false);
    learner.look(*frame.get(), i >= 20);
  }
  EXPECT_TRUE(learner.saw_moving_pen());
}

}  // namespace
