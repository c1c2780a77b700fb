// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

namespace ambrel::soak {

// A straight line through measured points, by least squares.
struct Trend {
  double slope = 0;    // of y for one x
  double error = 0;    // standard error of the slope
  bool known = false;  // false where there are too few points to judge by
};

struct Point {
  double x = 0;
  double y = 0;
};

// Points that follow one another closely resemble each other, and would make the line look more certain than
// it is: the line goes through the means of `blocks` runs of points.
Trend trendOf(const std::vector<Point>& points, std::size_t blocks = 12);

}  // namespace ambrel::soak
