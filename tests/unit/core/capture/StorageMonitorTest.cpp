// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <gtest/gtest.h>
#include <thread>
#include <utility>
#include <vector>

#include "core/base/PosixFiles.h"
#include "core/capture/StorageMonitor.h"
#include "support/BrokenFiles.h"
#include "support/ScriptedOperator.h"
#include "support/TestClock.h"

using namespace ambrel;
using namespace std::chrono_literals;

namespace {

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;
constexpr std::uint64_t kTotal = 500 * kGiB;

class StorageMonitorTest : public ::testing::Test {
 protected:
  void refreshWith(std::uint64_t free, std::uint64_t total = kTotal) {
    files.setVolumeSpace({free, total});
    monitor.updateStorageLabel();
  }

  TestClock clock;
  PosixFiles real;
  BrokenFiles files{real};
  ScriptedOperator person;
  QString watched = "/";
  StorageMonitor monitor{clock, files, person, [this] { return watched; }};
};

}  // namespace

TEST(StorageLevel, TellsTheFourLevelsApartToTheByte) {
  const std::vector<std::pair<VolumeSpace, StorageLevel>> cases = {
      {{0, kTotal}, StorageLevel::Unknown},
      {{5, 0}, StorageLevel::Unknown},
      {{1, kTotal}, StorageLevel::Critical},
      {{10'737'418'240, kTotal}, StorageLevel::Critical},
      {{10'737'418'241, kTotal}, StorageLevel::Low},
      {{53'687'091'200, kTotal}, StorageLevel::Low},
      {{53'687'091'201, kTotal}, StorageLevel::Healthy}};
  for (const auto& [space, level] : cases)
    EXPECT_EQ(storageLevel(space), level) << space.free;
}

TEST(StorageText, ShowsBytesInTheLargestFittingUnit) {
  const std::vector<std::pair<quint64, QString>> cases = {{0, "0 B"},
                                                          {1, "1 B"},
                                                          {1023, "1023 B"},
                                                          {1024, "1.0 KB"},
                                                          {1'536'000, "1.5 MB"},
                                                          {99 * 1024 + 512, "99.5 KB"},
                                                          {100 * 1024, "100 KB"},
                                                          {1024 * 1024 - 1, "1024 KB"},
                                                          {150 * kGiB, "150 GB"},
                                                          {512 * kGiB, "512 GB"},
                                                          {87 * kGiB + 322'122'547, "87.3 GB"},
                                                          {9 * kGiB + kGiB / 2, "9.5 GB"},
                                                          {kGiB << 10, "1.0 TB"},
                                                          {kGiB << 20, "1.0 PB"},
                                                          {~quint64{0}, "16384 PB"}};
  for (const auto& [bytes, text] : cases)
    EXPECT_EQ(compactStorageString(bytes), text) << bytes;
}

TEST_F(StorageMonitorTest, ShowsTheFreeSpaceAndItsLevel) {
  refreshWith(150 * kGiB);
  EXPECT_EQ(monitor.reading(), (StorageReading{StorageLevel::Healthy, "150 GB"}));
  refreshWith(20 * kGiB);
  EXPECT_EQ(monitor.reading(), (StorageReading{StorageLevel::Low, "20.0 GB"}));
  EXPECT_TRUE(person.alerts.empty());
}

TEST_F(StorageMonitorTest, TellsOfEveryRefresh) {
  int told = 0;
  QObject::connect(&monitor, &StorageMonitor::refreshed, [&] { ++told; });
  refreshWith(150 * kGiB);
  refreshWith(150 * kGiB);
  EXPECT_EQ(told, 2);
}

TEST_F(StorageMonitorTest, ACriticalSpaceWarnsOnce) {
  refreshWith(10 * kGiB);
  refreshWith(9 * kGiB);
  EXPECT_EQ(monitor.reading(), (StorageReading{StorageLevel::Critical, "9.0 GB"}));
  EXPECT_EQ(person.alerts, (std::vector<ScriptedOperator::Alert>{
                               {"Laptop Storage Critical",
                                "Available storage is at or below 10 GB. Free up space immediately or photos "
                                "may fail to write."}}));
}

TEST_F(StorageMonitorTest, WarnsAgainAfterTheSpaceRoseAboveCritical) {
  refreshWith(10 * kGiB);
  refreshWith(10 * kGiB + 1);
  refreshWith(10 * kGiB);
  EXPECT_EQ(person.alerts.size(), 2U);
}

TEST_F(StorageMonitorTest, WarnsAgainWhenTheWarningWasCleared) {
  refreshWith(kGiB);
  monitor.clearLowStorageWarning();
  refreshWith(kGiB);
  EXPECT_EQ(person.alerts.size(), 2U);
}

TEST_F(StorageMonitorTest, AnUnknownSpaceNeitherWarnsNorRearmsTheWarning) {
  refreshWith(0);
  EXPECT_EQ(monitor.reading(), (StorageReading{StorageLevel::Unknown, "Unknown"}));
  EXPECT_TRUE(person.alerts.empty());
  refreshWith(kGiB);
  refreshWith(5, 0);
  refreshWith(kGiB);
  EXPECT_EQ(person.alerts.size(), 1U);
}

TEST_F(StorageMonitorTest, AFolderThatIsGoneIsUnknown) {
  watched = "/no/such/volume";
  monitor.updateStorageLabel();
  EXPECT_EQ(monitor.reading().level, StorageLevel::Unknown);
  EXPECT_TRUE(person.alerts.empty());
}

TEST_F(StorageMonitorTest, ReadsTheRealVolume) {
  monitor.updateStorageLabel();
  EXPECT_NE(monitor.reading().level, StorageLevel::Unknown);
}

TEST_F(StorageMonitorTest, RefreshesEveryFifteenSecondsUntilStopped) {
  monitor.startTimer();
  clock.advance(14'999ms);
  EXPECT_EQ(files.calls(BrokenFiles::Operation::Space), 0);
  clock.advance(1ms);
  EXPECT_EQ(files.calls(BrokenFiles::Operation::Space), 1);
  clock.advance(30s);
  EXPECT_EQ(files.calls(BrokenFiles::Operation::Space), 3);
  monitor.stopTimer();
  monitor.stopTimer();
  clock.advance(60s);
  EXPECT_EQ(files.calls(BrokenFiles::Operation::Space), 3);
}

TEST_F(StorageMonitorTest, StartingTwiceKeepsOneTimer) {
  monitor.startTimer();
  monitor.startTimer();
  EXPECT_EQ(clock.pendingTimers(), 1U);
}

TEST_F(StorageMonitorTest, AskedFromAnotherThreadItRefreshesOnTheMainThread) {
  std::thread::id refreshedOn;
  QObject::connect(&monitor, &StorageMonitor::refreshed, [&] { refreshedOn = std::this_thread::get_id(); });
  std::thread([this] { monitor.updateStorageLabel(); }).join();
  EXPECT_EQ(refreshedOn, std::thread::id());
  QCoreApplication::processEvents();
  EXPECT_EQ(refreshedOn, std::this_thread::get_id());
}
