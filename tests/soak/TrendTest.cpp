// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "soak/Trend.h"

using namespace ambrel::soak;

namespace {

std::vector<Point> line(double slope, double scatter, int count) {
  std::vector<Point> points;
  for (int i = 0; i < count; ++i)
    points.push_back({i / 100.0, 5 + slope * i / 100.0 + (i % 2 == 0 ? scatter : -scatter)});
  return points;
}

TEST(SoakTrend, FindsTheSlopeOfALine) {
  const Trend trend = trendOf(line(3, 0, 240));
  ASSERT_TRUE(trend.known);
  EXPECT_NEAR(trend.slope, 3, 1e-9);
  EXPECT_NEAR(trend.error, 0, 1e-9);
}

TEST(SoakTrend, IsNotSureOfScatteredPoints) {
  std::vector<Point> points = line(0, 0, 240);
  for (std::size_t i = 0; i < points.size(); ++i)
    points[i].y += (i / 20) % 3 == 0 ? 1 : -1;  // in steps as long as a block
  const Trend trend = trendOf(points);
  ASSERT_TRUE(trend.known);
  EXPECT_LT(trend.slope - 2 * trend.error, 0);
  EXPECT_GT(trend.error, 0.1);
}

TEST(SoakTrend, JudgesNothingByAHandfulOfPoints) {
  EXPECT_FALSE(trendOf(line(3, 0, 10)).known);
}

TEST(SoakTrend, JudgesNothingByPointsAboveEachOther) {
  EXPECT_FALSE(trendOf(std::vector<Point>(100, Point{1, 2})).known);
}

}  // namespace
