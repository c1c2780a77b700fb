// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "ui/WindowLayout.h"

namespace ambrel::ui::layout {
namespace {

std::string inWords(const QRect& rect) {
  return QStringLiteral("%1,%2 %3x%4")
      .arg(rect.x())
      .arg(rect.y())
      .arg(rect.width())
      .arg(rect.height())
      .toStdString();
}

struct Placed {
  const char* what;
  QRect shown;
  QRect wanted;
};

void expectPlaces(std::initializer_list<Placed> table) {
  for (const Placed& row : table)
    EXPECT_TRUE(row.shown == row.wanted)
        << row.what << ": " << inWords(row.shown) << " instead of " << inWords(row.wanted);
}

TEST(WindowLayout, TurnsHeightsOverInOnePlace) {
  EXPECT_EQ(fromBottom(100, 5, 10, 20, 30), QRect(5, 60, 20, 30));
}

TEST(WindowLayout, PutsTheTopPanelAboveTheSplitView) {
  const Window places = window({1260, 840});
  expectPlaces({{"top panel", places.topPanel, fromBottom(840, 16, 754, 1228, 78)},
                {"split view", places.splitView, fromBottom(840, 16, 16, 1228, 726)}});
}

TEST(WindowLayout, MakesRoomForATitleBarOfUpToSixtyPoints) {
  EXPECT_EQ(window({1260, 840}, 28).topPanel, fromBottom(840, 16, 726, 1228, 78));
  EXPECT_EQ(window({1260, 840}, 60).topPanel, fromBottom(840, 16, 694, 1228, 78));
  EXPECT_EQ(window({1260, 840}, 61).topPanel, window({1260, 840}).topPanel);
  EXPECT_EQ(window({1260, 840}, -5).topPanel, window({1260, 840}).topPanel);
}

TEST(WindowLayout, KeepsTheSplitViewAtLeast280PointsHigh) {
  EXPECT_GE(window(kMinimumContent).splitView.height(), 280);
  EXPECT_EQ(window({760, 394}).splitView.height(), 280);
  EXPECT_EQ(window({760, 300}).splitView.height(), 280);
}

TEST(WindowLayout, PutsThePathLineIntoTheBottomMargin) {
  const Window places = window({1260, 840});
  EXPECT_FALSE(places.pathLine.intersects(places.splitView));
  EXPECT_LE(places.pathLine.bottom(), 840);
}

TEST(TopPanelLayout, LinesUpCardsFromTheLeftAndFromTheRight) {
  const TopPanel places = topPanel({1228, 78});
  expectPlaces({{"camera", places.cameraCard, fromBottom(78, 16, 14, 190, 50)},
                {"readiness", places.readinessCard, fromBottom(78, 216, 14, 168, 50)},
                {"gear", places.gearButton, fromBottom(78, 1166, 16, 46, 46)},
                {"reconnect", places.forceReconnectButton, fromBottom(78, 1110, 16, 46, 46)},
                {"counter", places.counterCard, fromBottom(78, 1008, 14, 92, 50)},
                {"backup", places.backupCard, fromBottom(78, 868, 14, 130, 50)},
                {"storage", places.storageCard, fromBottom(78, 728, 14, 130, 50)}});
}

TEST(TopPanelLayout, ShrinksTheCardsOfANarrowPanelInsteadOfOverlappingThem) {
  for (int width = kMinimumContent.width() - 32; width <= 1228; ++width) {
    const TopPanel places = topPanel({width, 78});
    EXPECT_GE(places.readinessCard.x(), places.cameraCard.right() + 10) << width;
    EXPECT_GE(places.storageCard.x(), places.readinessCard.right() + 10) << width;
    EXPECT_GE(places.backupCard.x(), places.storageCard.right() + 10) << width;
    EXPECT_GE(places.counterCard.x(), places.backupCard.right() + 10) << width;
    EXPECT_GE(places.forceReconnectButton.x(), places.counterCard.right() + 10) << width;
  }
}

TEST(TopPanelLayout, KeepsTheSameGapBetweenShrunkCards) {
  for (int width = kMinimumContent.width() - 32; width < 894; ++width) {
    const TopPanel places = topPanel({width, 78});
    const QRect cards[] = {places.cameraCard, places.readinessCard, places.storageCard,
                           places.backupCard, places.counterCard,   places.forceReconnectButton};
    for (std::size_t i = 1; i < std::size(cards); ++i)
      EXPECT_EQ(cards[i].x(), cards[i - 1].x() + cards[i - 1].width() + 10) << width << ' ' << i;
  }
}

TEST(TopPanelLayout, KeepsFullCardWidthsWhereTheyJustFit) {
  const TopPanel places = topPanel({894, 78});
  EXPECT_EQ(places.cameraCard.width(), 190);
  EXPECT_EQ(places.storageCard.x(), places.readinessCard.x() + 168 + 10);
  EXPECT_LT(topPanel({893, 78}).cameraCard.width(), 190);
}

TEST(CardLayout, PutsTheTitleAboveTheValue) {
  const Card places = card({190, 50});
  expectPlaces({{"title", places.title, fromBottom(50, 6, 30, 178, 13)},
                {"value", places.value, fromBottom(50, 6, 6, 178, 24)}});
}

TEST(LeftPaneLayout, FillsThePaneFromSearchToNote) {
  const LeftPane places = leftPane({560, 600});
  expectPlaces({{"search", places.searchField, fromBottom(600, 10, 556, 452, 34)},
                {"add", places.addSearchButton, fromBottom(600, 470, 556, 36, 34)},
                {"clear", places.clearSearchButton, fromBottom(600, 514, 556, 36, 34)},
                {"filter", places.filterButton, fromBottom(600, 10, 514, 460, 34)},
                {"export", places.exportButton, fromBottom(600, 478, 514, 72, 34)},
                {"note icon", places.noteIconView, fromBottom(600, 10, 16, 22, 18)},
                {"note field", places.noteField, fromBottom(600, 38, 10, 474, 30)},
                {"note indicator", places.noteIndicator, fromBottom(600, 520, 10, 30, 30)},
                {"table", places.table, fromBottom(600, 0, 48, 560, 458)}});
}

TEST(LeftPaneLayout, KeepsSmallestSizesInATinyPane) {
  const LeftPane places = leftPane({100, 60});
  EXPECT_EQ(places.searchField.width(), 80);
  EXPECT_EQ(places.filterButton.width(), 120);
  EXPECT_EQ(places.table.height(), 100);
  EXPECT_EQ(leftPane({100, 20}).searchField, fromBottom(20, 10, 0, 80, 34));
}

TEST(RightPaneLayout, PutsThePreviewAboveItsButtons) {
  const RightPane places = rightPane({620, 600});
  expectPlaces({{"reveal", places.revealButton, fromBottom(600, 10, 4, 34, 28)},
                {"previous", places.prevButton, fromBottom(600, 52, 4, 34, 28)},
                {"file name", places.filenameLabel, fromBottom(600, 94, 4, 474, 28)},
                {"next", places.nextButton, fromBottom(600, 576, 4, 34, 28)},
                {"preview", places.preview, fromBottom(600, 10, 40, 600, 550)},
                {"pill", places.previewDownloadedPill, fromBottom(600, 494, 556, 104, 22)}});
}

TEST(RightPaneLayout, KeepsSmallestSizesInATinyPane) {
  const RightPane places = rightPane({90, 60});
  EXPECT_EQ(places.filenameLabel.width(), 100);
  EXPECT_EQ(places.preview.size(), QSize(100, 100));
}

TEST(Divider, StopsAt330PointsAndAt360FromTheRight) {
  EXPECT_EQ(constrainedDivider(200, 1228), 330);
  EXPECT_EQ(constrainedDivider(600, 1228), 600);
  EXPECT_EQ(constrainedDivider(1228 - 300, 1228), 1228 - 360);
}

TEST(Divider, SplitsIntoHalvesWithOnePointBetween) {
  EXPECT_EQ(halves(1228), (std::array<int, 2>{614, 613}));
}

TEST(SettingsLayout, FitsEverySectionInto360By340) {
  EXPECT_EQ(kSettingsSize, QSize(360, 340));
  const Settings places = settings({360, 340}, 5);
  expectPlaces({{"SETTINGS", places.sectionLabels[0], fromBottom(340, 16, 302, 328, 22)},
                {"TARGET FOLDER", places.sectionLabels[1], fromBottom(340, 16, 276, 328, 14)},
                {"folder button", places.folderButton, fromBottom(340, 248, 244, 96, 28)},
                {"folder path", places.folderPathLabel, fromBottom(340, 16, 248, 222, 18)},
                {"BACKUP FOLDER", places.sectionLabels[2], fromBottom(340, 16, 216, 328, 14)},
                {"backup button", places.backupButton, fromBottom(340, 228, 184, 116, 28)},
                {"backup path", places.backupPathLabel, fromBottom(340, 16, 188, 202, 18)},
                {"DESTINATION", places.sectionLabels[3], fromBottom(340, 16, 156, 328, 14)},
                {"Both", places.destButtons[0], fromBottom(340, 16, 124, 104, 28)},
                {"Disk", places.destButtons[1], fromBottom(340, 128, 124, 104, 28)},
                {"Card", places.destButtons[2], fromBottom(340, 240, 124, 104, 28)},
                {"TAGS", places.sectionLabels[4], fromBottom(340, 16, 96, 328, 14)},
                {"first tag", places.suffixButtons[0], fromBottom(340, 16, 64, 46, 28)},
                {"edit", places.suffixManageButton, fromBottom(340, 284, 64, 60, 28)},
                {"reset", places.resetButton, fromBottom(340, 16, 16, 328, 30)}});
}

TEST(SettingsLayout, FitsFiveTagButtonsBesideTheEditButton) {
  const Settings places = settings(kSettingsSize, 5);
  ASSERT_EQ(places.suffixButtons.size(), 5U);
  EXPECT_EQ(places.suffixButtons[1].x() - places.suffixButtons[0].x(), 52);
  EXPECT_FALSE(places.suffixButtons[4].intersects(places.suffixManageButton));
}

TEST(SettingsLayout, KeepsTheResetButtonInsideTheContent) {
  EXPECT_EQ(settings({360, 300}, 0).resetButton, fromBottom(300, 16, 16, 328, 30));
  EXPECT_EQ(settings({360, 400}, 0).resetButton, fromBottom(400, 16, 60, 328, 30));
}

TEST(WindowLayout, APlacementComesBackAsItWasWritten) {
  const Placement placement{{1260, 840}, 613};
  EXPECT_EQ(placementText(placement), QStringLiteral("1260x840/613"));
  EXPECT_EQ(placementFrom(placementText(placement)), placement);
}

TEST(WindowLayout, APlacementThatCannotBeReadIsNone) {
  for (const char* text : {"", "1260x840", "x/", "-5x5/5", "1260x840/613 ", "9999999x1/1", "a x b/c"})
    EXPECT_EQ(placementFrom(QLatin1String(text)), std::nullopt) << text;
}

TEST(WindowLayout, APlacementIsBroughtOntoTheScreenAndNeverBelowTheSmallestWindow) {
  EXPECT_EQ(fittedPlacement({{3000, 2000}, 500}, {1440, 900}), (Placement{{1440, 900}, 500}));
  EXPECT_EQ(fittedPlacement({{10, 10}, 10}, {1440, 900}), (Placement{kMinimumContent, kLeftPaneMinimum}));
  EXPECT_EQ(fittedPlacement({{1000, 700}, 5000}, {1440, 900}).leftPane, 1000 - 32 - kRightPaneMinimum);
}

}  // namespace
}  // namespace ambrel::ui::layout
