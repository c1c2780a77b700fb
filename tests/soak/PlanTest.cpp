// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <set>

#include "soak/Plan.h"

using namespace ambrel::soak;

namespace {

TEST(SoakPlan, IsTheSameForTheSameSeedAndAnotherForAnother) {
  EXPECT_EQ(makePlan(10, 7), makePlan(10, 7));
  EXPECT_NE(makePlan(10, 7), makePlan(10, 8));
}

TEST(SoakPlan, HasEveryActAndEveryMishapInTenMinutes) {
  for (const std::uint64_t seed : {1U, 2U, 3U}) {
    const Plan plan = makePlan(10, seed);
    std::set<Act> acts;
    for (const Action& action : plan.actions)
      acts.insert(action.act);
    std::set<Mishap> mishaps;
    for (const Fault& fault : plan.faults)
      mishaps.insert(fault.mishap);
    EXPECT_EQ(acts.size(), kActs);
    EXPECT_EQ(mishaps.size(), kMishaps);
    EXPECT_EQ(plan.restarts.size(), 4u);
  }
}

TEST(SoakPlan, GivesNoTwoPhotosTheSameSize) {
  const Plan plan = makePlan(10, 1);
  EXPECT_GE(plan.photos, kMostPhotos);
  EXPECT_LE(plan.photos, kMostPhotos + 1);
  std::set<int> sizes;
  std::size_t files = 0;
  for (const Shot& shot : plan.shots) {
    const bool pair = shot.kind == ShotKind::Pair;
    sizes.insert(shot.size);
    if (pair) sizes.insert(shot.size + kRawSurplus);
    files += pair ? 2 : 1;
  }
  EXPECT_EQ(files, plan.photos);
  EXPECT_EQ(sizes.size(), plan.photos);
}

TEST(SoakPlan, EndsEachFaultBeforeTheNextOne) {
  for (const double minutes : {0.4, 1.0, 10.0, 60.0}) {
    const Plan plan = makePlan(minutes, 5);
    for (std::size_t i = 1; i < plan.faults.size(); ++i)
      EXPECT_LT(plan.faults[i - 1].at + plan.faults[i - 1].lasts, plan.faults[i].at);
    EXPECT_LT(plan.faults.back().at + plan.faults.back().lasts, plan.length);
    EXPECT_LT(plan.restarts.back(), plan.length);
  }
}

TEST(SoakPlan, LeavesNoPhotosBehindOnTheCardAlone) {
  const Plan plan = makePlan(10, 3);
  Act mode = Act::SaveToBoth;
  for (const Action& action : plan.actions) {
    if (action.act == Act::SaveToCard || action.act == Act::SaveToDisk || action.act == Act::SaveToBoth)
      mode = action.act;
  }
  EXPECT_EQ(mode, Act::SaveToBoth);
}

}  // namespace
