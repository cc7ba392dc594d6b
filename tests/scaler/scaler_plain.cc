#include "scaler/scaler_plain.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace nox::test {
namespace {

double lanczos2(double x) {
  const double pi = 3.141592653589793;
  if (x < -2.0 || x > 2.0) return 0.0;
  const double a = x == 0.0 ? 1.0 : std::sin(pi * x) / (pi * x);
  const double b = x == 0.0 ? 1.0 : std::sin(pi * x / 2) / (pi * x / 2);
  return std::abs(a * b) < 1e-7 ? 0.0 : a * b;
}

double cubic(double x) {
  const double a = std::abs(x);
  double value = 0.0;
  if (a <= 1.0) {
    value = 7.0 * std::pow(a, 3) - 12.0 * std::pow(a, 2) + 5.333333333333333;
  } else if (a <= 2.0) {
    value = -2.3333333333333335 * std::pow(a, 3) + 12.0 * std::pow(a, 2) - 20.0 * a +
            10.666666666666666;
  }
  return std::abs(value) < 1e-7 ? 0.0 : value;
}

// Nearest integers to c, then single steps on the tap with the largest error until the sum is
// `one`.
std::vector<int> fixed_plain(std::vector<double> c, int one) {
  const int taps = static_cast<int>(c.size());
  std::vector<int> q(c.size());
  for (;;) {
    int sum = 0;
    for (std::size_t t = 0; t < c.size(); ++t) {
      q[t] = static_cast<int>(std::floor(c[t] * one + 0.5));
      sum += q[t];
    }
    if (sum == one) return q;
    int chosen = -1;
    double error = -std::numeric_limits<double>::infinity();
    for (int t = 0; t < taps; ++t) {
      const auto i = static_cast<std::size_t>(t);
      const double shortfall = c[i] * one - q[i];
      const double candidate = sum < one ? shortfall : -shortfall;
      if (candidate > error) {
        error = candidate;
        chosen = t;
      }
    }
    const auto i = static_cast<std::size_t>(chosen);
    c[i] = (q[i] + (sum < one ? 1 : -1)) / static_cast<double>(one);
  }
}

struct Place {
  int index;
  int phase;
};

// Where output `x` of an axis lies in the source.
Place place_plain(int x, int in, int out) {
  const float ratio = static_cast<float>(in) / static_cast<float>(out);
  const float product = static_cast<float>(x) * ratio;
  const double position = product + (ratio - 1.0) * 0.5;
  const double whole = std::floor(position);
  const int phase = static_cast<int>((position - whole) * 16 + 0.5);
  return {static_cast<int>(whole) + phase / 16, phase % 16};
}

int wrapped(int index, int count) {
  return std::clamp(index, 0, count - 1) % 65536;
}

struct PlainFilter {
  std::vector<std::vector<int>> taps;
  int shift;
  // The picture that is filtered, full size, with which the positions are made.
  int in_width, in_height;
};

// The sums along the rows, for every output column and every source row.
std::vector<int> row_sums(const PlainFilter &filter, const Picture &src, int out_width,
                          int ratio_out_width) {
  std::vector<int> sums;
  for (int y = 0; y < src.height; ++y) {
    for (int x = 0; x < out_width; ++x) {
      const Place column = place_plain(x, filter.in_width, ratio_out_width);
      const std::vector<int> &taps = filter.taps[static_cast<std::size_t>(column.phase)];
      const int count = static_cast<int>(taps.size());
      int sum = 0;
      for (int t = 0; t < count; ++t) {
        const int from = wrapped(column.index + t + 1 - count / 2, src.width);
        sum += taps[static_cast<std::size_t>(t)] * src.at(from, y);
      }
      sums.push_back(count == 4 ? std::clamp(sum, -32768, 32767) : sum);
    }
  }
  return sums;
}

Picture filter_plain(const PlainFilter &filter, const Picture &src, const PlainSizes &sizes) {
  const int part = sizes.half_plane ? 2 : 1;
  if (src.width <= 0 || src.height <= 0) return {};
  Picture dst(sizes.out_width / part, sizes.out_height / part);
  const std::vector<int> sums = row_sums(filter, src, dst.width, sizes.out_width);
  for (int y = 0; y < dst.height; ++y) {
    const Place row = place_plain(y, filter.in_height, sizes.out_height);
    const std::vector<int> &taps = filter.taps[static_cast<std::size_t>(row.phase)];
    const int count = static_cast<int>(taps.size());
    for (int x = 0; x < dst.width; ++x) {
      int sum = 1 << (2 * filter.shift - 1);
      for (int t = 0; t < count; ++t) {
        const int from = wrapped(row.index + t + 1 - count / 2, src.height);
        sum += taps[static_cast<std::size_t>(t)] *
               sums[static_cast<std::size_t>(from) * static_cast<std::size_t>(dst.width) +
                    static_cast<std::size_t>(x)];
      }
      dst.at(x, y) = static_cast<std::uint8_t>(std::clamp(sum >> (2 * filter.shift), 0, 255));
    }
  }
  return dst;
}

double ratio_plain(const PlainSizes &s) {
  const double x = static_cast<double>(s.in_width) / s.out_width;
  const double y = static_cast<double>(s.in_height) / s.out_height;
  return s.in_width < s.out_width || s.in_height < s.out_height ? std::min(x, y) : std::max(x, y);
}

// Only the samples that a half plane of these sizes surely has.
Picture cropped(const Picture &src, int width, int height) {
  if (width <= 0 || height <= 0) return {};
  Picture part(width, height);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) part.at(x, y) = static_cast<std::uint8_t>(src.at(x, y));
  }
  return part;
}

int avg(int u, int v) {
  return (u + v + 1) / 2;
}

int halved_sample(const Picture &src, int x, int y, int out_width) {
  const int a = src.at(2 * x, 2 * y), b = src.at(2 * x + 1, 2 * y);
  const int c = src.at(2 * x, 2 * y + 1), d = src.at(2 * x + 1, 2 * y + 1);
  const bool rows_first = x < out_width / 16 * 16;
  return rows_first ? avg(avg(a, c), avg(b, d)) : avg(avg(a, b), avg(c, d));
}

int block_mean(const Picture &src, int x, int y, int factor) {
  unsigned sum = 0;
  for (int j = 0; j < factor; ++j) {
    for (int i = 0; i < factor; ++i) {
      sum += static_cast<unsigned>(src.at(x * factor + i, y * factor + j));
    }
  }
  const auto area = static_cast<unsigned>(factor * factor);
  return static_cast<int>((sum % 65536 + area / 2) / area);
}

}  // namespace

int select_plain(const PlainSizes &s) {
  if (s.in_width <= 0 || s.in_height <= 0 || s.out_width <= 0 || s.out_height <= 0) return -1;
  if (s.out_width % 2 != 0 || s.out_height % 2 != 0) return -1;
  const double x = static_cast<double>(s.in_width) / s.out_width;
  const double y = static_cast<double>(s.in_height) / s.out_height;
  const double ratio = std::max(x, y);
  const bool same = s.in_width == s.out_width && s.in_height == s.out_height;
  const bool exact_factor = s.in_width % s.out_width == 0 && s.out_width % 16 == 0 && x == y;
  if (ratio <= 2.0000001192092896 && (same || exact_factor)) return 0;
  if (s.out_width % 8 != 0 || ratio > 99999.0) return -1;
  const bool mixed = (s.out_width < s.in_width && s.out_height > s.in_height) ||
                     (s.out_width > s.in_width && s.out_height < s.in_height);
  return !mixed && ratio <= 40.00000011920929 ? 2 : 1;
}

Picture box_plain(const Picture &src, int factor, int out_width, int out_height) {
  if (out_width <= 0 || out_height <= 0) return {};
  Picture dst(out_width, out_height);
  for (int y = 0; y < out_height; ++y) {
    for (int x = 0; x < out_width; ++x) {
      const int value =
          factor == 2 ? halved_sample(src, x, y, out_width) : block_mean(src, x, y, factor);
      dst.at(x, y) = static_cast<std::uint8_t>(value);
    }
  }
  return dst;
}

std::vector<std::vector<int>> taps_plain(double ratio, int taps, bool lanczos) {
  const float f = static_cast<float>(ratio);
  std::vector<std::vector<int>> all;
  for (int phase = 0; phase < 16; ++phase) {
    std::vector<double> c;
    double sum = 0.0;
    for (int t = 0; t < taps; ++t) {
      const double distance = t + (1.0 - taps / 2 - phase * 0.0625);
      const double x = distance * (f < 1.0F ? 1.0 : 1.0 / f);
      c.push_back(lanczos ? lanczos2(x) : cubic(x));
      sum += c.back();
    }
    for (double &value : c) value = value * (1.0 / sum);
    all.push_back(fixed_plain(c, taps == 8 ? 64 : 128));
  }
  return all;
}

Picture tiled_plain(const Picture &src, const PlainSizes &sizes) {
  double ratio = ratio_plain(sizes);
  int halvings = 0;
  for (; ratio > 2.5 && halvings < 4; ++halvings) ratio *= 0.5;
  const int taps = ratio <= 1.625 ? 4 : 8;
  const bool lanczos = ratio >= 1.0 && halvings == 0;
  int width = sizes.in_width >> halvings;
  int height = sizes.in_height >> halvings;
  if (halvings > 0) {
    width -= width % 2;
    height -= height % 2;
  }
  const int part = sizes.half_plane ? 2 : 1;
  const Picture smaller = halvings == 0
                              ? cropped(src, width / part, height / part)
                              : box_plain(src, 1 << halvings, width / part, height / part);
  return filter_plain({taps_plain(ratio, taps, lanczos), taps == 8 ? 6 : 7, width, height}, smaller,
                      sizes);
}

Picture separable_plain(const Picture &src, const PlainSizes &sizes) {
  const double ratio = ratio_plain(sizes);
  const int taps = ratio < 1.0 ? 4 : static_cast<int>(std::min(ratio * 4.0, 32.0));
  const int part = sizes.half_plane ? 2 : 1;
  return filter_plain(
      {taps_plain(ratio, taps, ratio >= 1.0), taps == 8 ? 6 : 7, sizes.in_width, sizes.in_height},
      cropped(src, sizes.in_width / part, sizes.in_height / part), sizes);
}

Picture scale_plain(const Picture &src, const PlainSizes &sizes) {
  const int part = sizes.half_plane ? 2 : 1;
  switch (select_plain(sizes)) {
    case 0:
      return box_plain(src, sizes.in_width / sizes.out_width, sizes.out_width / part,
                       sizes.out_height / part);
    case 1:
      return separable_plain(src, sizes);
    case 2:
      return tiled_plain(src, sizes);
    default:
      return {};
  }
}

}  // namespace nox::test
