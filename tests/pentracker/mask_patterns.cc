#include "pentracker/mask_patterns.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>

namespace nox::test {

namespace {

using Size = std::int32_t;

MaskPtr noise(Size width, Size height, double density, Random *random) {
  return mask_where(width, height, [&](Size, Size) { return random->chance(density); });
}

// Arms that meet only at the bottom, so that each starts as a group of its own.
MaskPtr u_shapes(Size width, Size height, Size frame) {
  const Size step = 8;
  return mask_where(width, height, [=](Size x, Size y) {
    const Size u = (x + frame) % step;
    return (u == 1 || u == 5 || (u > 1 && u < 5 && y % 12 >= 8)) && y % 12 != 11;
  });
}

MaskPtr comb(Size width, Size height, Size frame, bool joined_left) {
  return mask_where(width, height, [=](Size x, Size y) {
    const Size spine = joined_left ? 0 : width - 1;
    return (y + frame) % 2 == 0 || x == spine;
  });
}

// Teeth of falling height, so that merges meet ever smaller numbers from the right.
MaskPtr stairs(Size width, Size height, Size frame) {
  return mask_where(width, height, [=](Size x, Size y) {
    const Size top = height - 2 - ((x + frame) * 3) % std::max(height, 1);
    return y == height - 1 || (x % 2 == 0 && y >= std::abs(top));
  });
}

MaskPtr spiral(Size width, Size height, Size frame) {
  return mask_where(width, height, [=](Size x, Size y) {
    const Size ring = std::min({x, y, width - 1 - x, height - 1 - y});
    const bool gap = x == ring && y == ring + 1;     // leaves the ring open
    const bool bridge = x == ring && y == ring + 2;  // leads from one ring to the next
    return ((ring + frame) % 2 == 0) ? !gap : bridge;
  });
}

MaskPtr rings(Size width, Size height, Size frame) {
  return mask_where(width, height, [=](Size x, Size y) {
    return (std::min({x, y, width - 1 - x, height - 1 - y}) + frame / 7) % 2 == 0;
  });
}

Size wrapped(Size position, Size size) {
  return (position % size + size) % size;
}

MaskPtr moving_squares(Size width, Size height, Size frame, Random *random) {
  MaskPtr mask = make_mask(width, height);
  for (Size i = 0; i < 12; ++i) {
    const Size side = 2 + i % 5;
    const Size left = wrapped(i * 31 + frame * (i % 4 - 1) + random->between(0, 1), width);
    const Size top = wrapped(i * 17 + frame * (i % 3 - 1) + random->between(0, 1), height);
    for (Size y = top; y < std::min(top + side, height); ++y) {
      for (Size x = left; x < std::min(left + side, width); ++x) set_pixel(mask.get(), x, y);
    }
  }
  return mask;
}

// Discs that drift, overlap and part again, with holes that open and close in them.
MaskPtr drifting_discs(Size width, Size height, Size frame) {
  MaskPtr mask = make_mask(width, height);
  for (Size i = 0; i < 9; ++i) {
    const Size radius = 3 + i * 2 % 11;
    const Size hole = (frame + i) % 4 - 1;
    const Size left = wrapped(i * 29 + frame * (i % 3 - 1), width);
    const Size top = wrapped(i * 13 + frame * (i % 2), height);
    for (Size y = std::max(top - radius, 0); y <= std::min(top + radius, height - 1); ++y) {
      for (Size x = std::max(left - radius, 0); x <= std::min(left + radius, width - 1); ++x) {
        const Size square = (x - left) * (x - left) + (y - top) * (y - top);
        if (square <= radius * radius && square > hole * hole * hole) set_pixel(mask.get(), x, y);
      }
    }
  }
  return mask;
}

// Fingers that hang down from a bar and are cut off at different heights, with bars across them.
MaskPtr gratings(Size width, Size height, Size frame) {
  return mask_where(width, height, [=](Size x, Size y) {
    const Size finger = x / 5;
    const Size cut = 3 + (finger * 7 + frame) % 13;
    return y % 17 < 2 || (x % 5 < 3 && (y + frame) % 17 < cut) || (x % 5 == 3 && y % 17 == cut);
  });
}

std::vector<MaskPattern> all_patterns() {
  const auto plain = [](auto make) {
    return [make](Size w, Size h, Size f, Random *) { return make(w, h, f); };
  };
  std::vector<MaskPattern> patterns;
  for (const int percent : {2, 10, 25, 40, 50, 60, 75, 95}) {
    patterns.push_back({"noise" + std::to_string(percent), [=](Size w, Size h, Size, Random *r) {
                          return noise(w, h, percent / 100.0, r);
                        }});
  }
  patterns.push_back({"u_shapes", plain(u_shapes)});
  patterns.push_back(
      {"comb_left", plain([](Size w, Size h, Size f) { return comb(w, h, f, true); })});
  patterns.push_back(
      {"comb_right", plain([](Size w, Size h, Size f) { return comb(w, h, f, false); })});
  patterns.push_back({"stairs", plain(stairs)});
  patterns.push_back({"spiral", plain(spiral)});
  patterns.push_back({"rings", plain(rings)});
  patterns.push_back({"checkerboard", plain([](Size w, Size h, Size f) {
                        return mask_where(w, h,
                                          [=](Size x, Size y) { return (x + y + f / 5) % 2 == 0; });
                      })});
  patterns.push_back({"tiles", plain([](Size w, Size h, Size f) {
                        return mask_where(w, h, [=](Size x, Size y) {
                          return ((x + f / 3) / 3 + y / 3) % 2 == 0;
                        });
                      })});
  patterns.push_back({"moving_squares", moving_squares});
  patterns.push_back({"drifting_discs", plain(drifting_discs)});
  patterns.push_back({"gratings", plain(gratings)});
  patterns.push_back({"white", plain([](Size w, Size h, Size) {
                        return mask_where(w, h, [](Size, Size) { return true; });
                      })});
  patterns.push_back({"empty", plain([](Size w, Size h, Size) { return make_mask(w, h); })});
  patterns.push_back({"mixed", [](Size w, Size h, Size f, Random *r) {
                        const auto &all = mask_patterns();
                        return all[static_cast<std::size_t>(f * 5) % (all.size() - 1)].make(w, h, f,
                                                                                            r);
                      }});
  return patterns;
}

}  // namespace

void set_pixel(BitMask *mask, Size x, Size y) {
  std::uint8_t *row = mask->data + static_cast<std::ptrdiff_t>(y) * mask->stride;
  row[x / 8] = static_cast<std::uint8_t>(row[x / 8] | 1U << (x % 8));
}

MaskPtr mask_where(Size width, Size height, const std::function<bool(Size, Size)> &inside) {
  MaskPtr mask = make_mask(width, height);
  for (Size y = 0; y < height; ++y) {
    for (Size x = 0; x < width; ++x) {
      if (inside(x, y)) set_pixel(mask.get(), x, y);
    }
  }
  return mask;
}

MaskPtr mask_of(const std::vector<std::string> &rows) {
  return mask_where(static_cast<Size>(rows.at(0).size()), static_cast<Size>(rows.size()),
                    [&](Size x, Size y) {
                      return rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] == '#';
                    });
}

void set_bits_behind_rows(BitMask *mask) {
  const Size stored = (mask->width + 127) / 128 * 128;
  for (Size y = 0; y < mask->height; ++y) {
    for (Size x = mask->width; x < stored; ++x) set_pixel(mask, x, y);
  }
}

const std::vector<MaskPattern> &mask_patterns() {
  static const std::vector<MaskPattern> patterns = all_patterns();
  return patterns;
}

}  // namespace nox::test
