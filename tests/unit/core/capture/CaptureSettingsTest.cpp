// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <limits>
#include <utility>
#include <vector>

#include "core/capture/CaptureSettings.h"

using namespace ambrel;

namespace {
constexpr qint64 kLargest = std::numeric_limits<qint64>::max();
}

TEST(CaptureSettings, StartsWithBothPhotoOneAndNoFolder) {
  const CaptureSettings settings;
  EXPECT_EQ(settings.saveModeIndex(), 0);
  EXPECT_EQ(settings.counterText(), "1");
  EXPECT_TRUE(settings.targetDir().isEmpty());
}

TEST(CaptureSettings, NamesTheThreeDestinations) {
  CaptureSettings settings;
  const std::vector<std::pair<QString, QString>> modes = {
      {"both", "Both"}, {"disk", "Disk"}, {"card", "Card"}};
  for (int index = 0; index < 3; ++index) {
    settings.setSaveModeIndex(index);
    EXPECT_EQ(settings.saveModeIndex(), index);
    EXPECT_EQ(settings.selectedSaveModeLower(), modes[static_cast<std::size_t>(index)].first);
    EXPECT_EQ(settings.saveModeLabel(), modes[static_cast<std::size_t>(index)].second);
  }
}

TEST(CaptureSettings, AnyOtherDestinationReadsAsBoth) {
  CaptureSettings settings;
  for (const int index : {-1, 3, 100}) {
    settings.setSaveModeIndex(2);
    settings.setSaveModeIndex(index);
    EXPECT_EQ(settings.saveModeIndex(), 0);
    EXPECT_EQ(settings.selectedSaveModeLower(), "both");
    EXPECT_EQ(settings.saveModeLabel(), "Both");
  }
}

TEST(CaptureSettings, TellsOfANewTargetFolder) {
  CaptureSettings settings;
  int told = 0;
  QObject::connect(&settings, &CaptureSettings::targetDirChanged, [&told] { ++told; });
  settings.setTargetDir("/photos");
  EXPECT_EQ(settings.targetDir(), "/photos");
  EXPECT_EQ(told, 1);
}

TEST(CaptureSettings, TheCounterKeepsDigitsOnly) {
  CaptureSettings settings;
  const std::vector<std::pair<QString, QString>> cases = {
      {"12", "12"}, {"1a2 ", "12"}, {"-5", "5"}, {"abc", ""}, {"", ""}, {"007", "007"}, {"٣4½", "4"}};
  for (const auto& [typed, kept] : cases) {
    settings.setCounterText(typed);
    EXPECT_EQ(settings.counterText(), kept) << typed.toStdString();
  }
}

TEST(CaptureSettings, TellsOfTheCounterAlsoWhenOnlyANonDigitWentAway) {
  CaptureSettings settings;
  int told = 0;
  QObject::connect(&settings, &CaptureSettings::counterTextChanged, [&told] { ++told; });
  settings.setCounterText("1x");
  EXPECT_EQ(settings.counterText(), "1");
  EXPECT_EQ(told, 1);
}

TEST(CaptureSettings, ACounterThatIsNoNumberOrBelowOneCountsAsOne) {
  CaptureSettings settings;
  for (const QString text : {"", "0", "000"}) {
    settings.setCounterText(text);
    EXPECT_EQ(settings.counterFieldValue(), 0);
    EXPECT_EQ(settings.counter(), 1);
  }
  settings.setCounterText("0042");
  EXPECT_EQ(settings.counter(), 42);
}

TEST(CaptureSettings, AFiledPhotoMovesTheCounterPastItsNumber) {
  CaptureSettings settings;
  settings.setCounterText("5");
  settings.advanceCounterPast(7);
  EXPECT_EQ(settings.counterText(), "8");
}

TEST(CaptureSettings, AnEmptyCounterShowsTwoAfterTheFirstPhoto) {
  CaptureSettings settings;
  settings.setCounterText("");
  settings.advanceCounterPast(settings.counter());
  EXPECT_EQ(settings.counterText(), "2");
}

TEST(CaptureSettings, ALargerCounterTypedMeanwhileIsKept) {
  CaptureSettings settings;
  settings.setCounterText("50");
  settings.advanceCounterPast(12);
  EXPECT_EQ(settings.counterText(), "50");
  settings.advanceCounterPast(49);
  EXPECT_EQ(settings.counterText(), "50");
  settings.advanceCounterPast(50);
  EXPECT_EQ(settings.counterText(), "51");
}

TEST(CaptureSettings, ACounterOfTooManyDigitsIsTheLargestNumberAndStays) {
  CaptureSettings settings;
  settings.setCounterText("99999999999999999999");
  EXPECT_EQ(settings.counter(), kLargest);
  settings.advanceCounterPast(kLargest);
  EXPECT_EQ(settings.counterText(), "99999999999999999999");
}
