// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QSet>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "core/base/Preferences.h"
#include "demo/SampleShoot.h"

using namespace ambrel;

namespace {

TEST(SampleShoot, HasTwelveNamesOneOfThemTwice) {
  const QStringList names = sampleNames();
  EXPECT_EQ(names.size(), 12);
  EXPECT_EQ(QSet<QString>(names.begin(), names.end()).size(), 11);
}

TEST(SampleShoot, IsRememberedLikeAShootOfYesterday) {
  const QTemporaryDir home;
  const Result<SampleShoot> shoot = prepareSampleShoot(home.path());
  ASSERT_TRUE(shoot) << shoot.error().toStdString();
  const Preferences preferences(shoot.value().locations.preferencesFile);
  EXPECT_EQ(preferences.lastTargetDir(), shoot.value().targetDir);
  EXPECT_EQ(preferences.lastCSVPath(), shoot.value().listFile);
  EXPECT_TRUE(QDir(shoot.value().targetDir).exists());
}

TEST(SampleShoot, SaysWhyItCannotBeLaidOut) {
  const Result<SampleShoot> shoot = prepareSampleShoot("/proc/no such place");
  EXPECT_FALSE(shoot);
  EXPECT_TRUE(shoot.error().contains("/proc/no such place"));
}

}  // namespace
