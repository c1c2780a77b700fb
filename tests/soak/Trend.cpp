// SPDX-License-Identifier: Apache-2.0
#include "soak/Trend.h"

#include <cmath>

namespace ambrel::soak {
namespace {

Point meanOf(const std::vector<Point>& points, std::size_t from, std::size_t to) {
  Point mean;
  for (std::size_t i = from; i < to; ++i) {
    mean.x += points[i].x;
    mean.y += points[i].y;
  }
  const auto count = static_cast<double>(to - from);
  return {mean.x / count, mean.y / count};
}

}  // namespace

Trend trendOf(const std::vector<Point>& points, std::size_t blocks) {
  if (blocks < 3 || points.size() < 2 * blocks) return {};
  std::vector<Point> means;
  for (std::size_t block = 0; block < blocks; ++block)
    means.push_back(meanOf(points, block * points.size() / blocks, (block + 1) * points.size() / blocks));
  const Point centre = meanOf(means, 0, means.size());
  double xx = 0;
  double xy = 0;
  for (const Point& mean : means) {
    xx += (mean.x - centre.x) * (mean.x - centre.x);
    xy += (mean.x - centre.x) * (mean.y - centre.y);
  }
  if (xx <= 0) return {};
  const double slope = xy / xx;
  double squares = 0;
  for (const Point& mean : means) {
    const double off = mean.y - centre.y - slope * (mean.x - centre.x);
    squares += off * off;
  }
  const double error = std::sqrt(squares / static_cast<double>(blocks - 2) / xx);
  return {slope, error, true};
}

}  // namespace ambrel::soak
