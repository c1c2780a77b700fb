// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QRect>
#include <QSize>
#include <QString>
#include <array>
#include <optional>
#include <vector>

// Where everything stands in the main window, as functions of sizes. The numbers are laid out from the
// bottom-left corner of each container, as the design draws them; fromBottom() alone turns them over, and
// every rectangle given out here counts y downwards, in points (logical pixels).
namespace ambrel::ui::layout {

inline constexpr QSize kInitialContent{1260, 840};
inline constexpr QSize kMinimumContent{760, 650};
inline constexpr int kLeftPaneMinimum = 330;
inline constexpr int kRightPaneMinimum = 360;
inline constexpr int kTableRowHeight = 34;
inline constexpr int kTableHeaderHeight = 28;
inline constexpr QSize kDownloadedPill{104, 22};

QRect fromBottom(int containerHeight, int x, int y, int width, int height);

struct Window {
  QRect topPanel;
  QRect splitView;
  QRect pathLine;  // in the margin below the split view
};
// `titleBarOverlap`: how far the title bar covers the content; above 60 or negative counts as 0.
Window window(QSize content, int titleBarOverlap = 0);

struct TopPanel {
  QRect cameraCard, readinessCard, storageCard, backupCard, counterCard;
  QRect forceReconnectButton, gearButton;
};
// In a panel too narrow for the cards at their full widths, all cards shrink by the same share instead of
// lying over each other.
TopPanel topPanel(QSize panel);

struct Card {
  QRect title, value;
};
Card card(QSize size);

struct LeftPane {
  QRect searchField, addSearchButton, clearSearchButton;
  QRect filterButton, exportButton;
  QRect table;  // the empty list's drop zone stands in the same place
  QRect noteIconView, noteField, noteIndicator;
};
LeftPane leftPane(QSize pane);

struct RightPane {
  QRect preview, previewDownloadedPill;
  QRect revealButton, prevButton, filenameLabel, nextButton;
};
RightPane rightPane(QSize pane);

// The widths of the two panes when the split has to be made anew.
std::array<int, 2> halves(int splitViewWidth);
// The nearest place that the divider may be dragged to.
int constrainedDivider(int proposed, int splitViewWidth);

// What the window looks like again after a restart.
struct Placement {
  QSize content;
  int leftPane = 0;  // width in points
  bool operator==(const Placement&) const = default;
};
// "1260x840/613"; unreadable text is none.
QString placementText(const Placement& placement);
std::optional<Placement> placementFrom(const QString& text);
// Brought within the smallest window and a screen of that size, with the divider where it may be.
Placement fittedPlacement(const Placement& placement, QSize screen);

struct Settings {
  std::array<QRect, 5> sectionLabels;  // settings, target folder, backup folder, destination, tags
  QRect folderButton, folderPathLabel;
  QRect backupButton, backupPathLabel;
  std::array<QRect, 3> destButtons;
  std::vector<QRect> suffixButtons;
  QRect suffixManageButton;
  QRect resetButton;
};
inline constexpr QSize kSettingsSize{360, 340};
Settings settings(QSize content, int tagCount);

}  // namespace ambrel::ui::layout
