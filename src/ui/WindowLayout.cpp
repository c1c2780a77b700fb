// SPDX-License-Identifier: Apache-2.0
#include "ui/WindowLayout.h"

#include <QRegularExpression>
#include <algorithm>

namespace ambrel::ui::layout {
namespace {

constexpr int kMargin = 16;
constexpr int kTopPanelHeight = 78;
constexpr int kLargestTitleBar = 60;
constexpr int kCardHeight = 50;
constexpr int kCardY = 14;
constexpr int kCardGap = 10;
constexpr int kSquareButton = 46;
constexpr int kSquareButtonY = 16;

constexpr int kPaneMargin = 10;
constexpr int kRowHeight = 34;
constexpr int kGap = 8;

constexpr int kTagWidth = 46;
constexpr int kTagStep = 52;

// Full widths, from left to right: camera, readiness | storage, backup, counter.
constexpr std::array<int, 5> kCardWidths{190, 168, 130, 130, 92};

constexpr int kFullWidthOfCards = 190 + 168 + 130 + 130 + 92;

// The card widths for the room between the left margin and the square buttons.
std::array<int, 5> cardWidths(int room) {
  const int gaps = 4 * kCardGap;
  if (room >= kFullWidthOfCards + gaps) return kCardWidths;
  std::array<int, 5> widths{};
  // By where each card ends, so that together they fill the room and every gap is the same.
  int fullEnd = 0;
  int before = 0;
  for (std::size_t i = 0; i < widths.size(); ++i) {
    fullEnd += kCardWidths[i];
    const int end = fullEnd * (room - gaps) / kFullWidthOfCards;
    widths[i] = std::max(1, end - before);
    before = end;
  }
  return widths;
}

}  // namespace

QRect fromBottom(int containerHeight, int x, int y, int width, int height) {
  return {x, containerHeight - y - height, width, height};
}

Window window(QSize content, int titleBarOverlap) {
  const int overlap = titleBarOverlap > kLargestTitleBar || titleBarOverlap < 0 ? 0 : titleBarOverlap;
  const int height = content.height();
  const int width = content.width() - 2 * kMargin;
  const int topPanelY = height - overlap - 8 - kTopPanelHeight;
  const int splitHeight = std::max(280, topPanelY - 12 - kMargin);
  return {fromBottom(height, kMargin, topPanelY, width, kTopPanelHeight),
          fromBottom(height, kMargin, kMargin, width, splitHeight),
          fromBottom(height, kMargin + 6, 1, width - 12, 14)};
}

TopPanel topPanel(QSize panel) {
  const auto square = [&](int x) {
    return fromBottom(panel.height(), x, kSquareButtonY, kSquareButton, kSquareButton);
  };
  const auto cardAt = [&](int x, int width) {
    return fromBottom(panel.height(), x, kCardY, width, kCardHeight);
  };
  TopPanel result;
  const int gearX = panel.width() - kMargin - kSquareButton;
  const int reconnectX = gearX - kCardGap - kSquareButton;
  result.gearButton = square(gearX);
  result.forceReconnectButton = square(reconnectX);

  const int cardsEnd = reconnectX - kCardGap;
  const auto [camera, readiness, storage, backup, counter] = cardWidths(cardsEnd - kMargin);
  result.cameraCard = cardAt(kMargin, camera);
  result.readinessCard = cardAt(kMargin + camera + kCardGap, readiness);
  result.counterCard = cardAt(cardsEnd - counter, counter);
  result.backupCard = cardAt(result.counterCard.x() - kCardGap - backup, backup);
  result.storageCard = cardAt(result.backupCard.x() - kCardGap - storage, storage);
  return result;
}

Card card(QSize size) {
  return {fromBottom(size.height(), 6, size.height() - 20, size.width() - 12, 13),
          fromBottom(size.height(), 6, 6, size.width() - 12, 24)};
}

LeftPane leftPane(QSize pane) {
  const int w = pane.width();
  const int h = pane.height();
  LeftPane result;

  const int firstRow = std::max(0, h - kRowHeight - kPaneMargin);
  const int clearX = w - kPaneMargin - 36;
  const int addX = clearX - kGap - 36;
  result.searchField =
      fromBottom(h, kPaneMargin, firstRow, std::max(80, addX - kPaneMargin - kGap), kRowHeight);
  result.addSearchButton = fromBottom(h, addX, firstRow, 36, kRowHeight);
  result.clearSearchButton = fromBottom(h, clearX, firstRow, 36, kRowHeight);

  const int secondRow = firstRow - kGap - kRowHeight;
  const int exportX = w - kPaneMargin - 72;
  result.filterButton =
      fromBottom(h, kPaneMargin, secondRow, std::max(120, exportX - kGap - kPaneMargin), kRowHeight);
  result.exportButton = fromBottom(h, exportX, secondRow, 72, kRowHeight);

  const int noteWidth = w - 20 - 8 - 30;
  result.noteIconView = fromBottom(h, 10, 16, 22, 18);
  result.noteField = fromBottom(h, 38, 10, noteWidth - 22 - 6, 30);
  result.noteIndicator = fromBottom(h, noteWidth + 10 + 8, 10, 30, 30);

  result.table = fromBottom(h, 0, 48, w, std::max(100, secondRow - kGap - 48));
  return result;
}

RightPane rightPane(QSize pane) {
  const int w = pane.width();
  const int h = pane.height();
  RightPane result;
  result.revealButton = fromBottom(h, 10, 4, 34, 28);
  result.prevButton = fromBottom(h, 52, 4, 34, 28);
  result.filenameLabel = fromBottom(h, 94, 4, std::max(100, w - 94 - 34 - 8 - 10), 28);
  result.nextButton = fromBottom(h, w - 10 - 34, 4, 34, 28);
  result.preview = fromBottom(h, 10, 40, std::max(100, w - 20), std::max(100, h - 28 - 22));
  const QRect& preview = result.preview;
  result.previewDownloadedPill =
      QRect(QPoint(preview.x() + preview.width() - 12 - kDownloadedPill.width(), preview.y() + 12),
            kDownloadedPill);
  return result;
}

std::array<int, 2> halves(int splitViewWidth) {
  const int half = splitViewWidth / 2;
  return {half, half - 1};
}

int constrainedDivider(int proposed, int splitViewWidth) {
  return std::min(std::max(proposed, kLeftPaneMinimum), splitViewWidth - kRightPaneMinimum);
}

QString placementText(const Placement& placement) {
  return QStringLiteral("%1x%2/%3")
      .arg(placement.content.width())
      .arg(placement.content.height())
      .arg(placement.leftPane);
}

std::optional<Placement> placementFrom(const QString& text) {
  const QRegularExpression form(QStringLiteral("^(\\d{1,5})x(\\d{1,5})/(\\d{1,5})$"));
  const QRegularExpressionMatch match = form.match(text);
  if (!match.hasMatch()) return std::nullopt;
  return Placement{{match.captured(1).toInt(), match.captured(2).toInt()}, match.captured(3).toInt()};
}

Placement fittedPlacement(const Placement& placement, QSize screen) {
  const QSize content = placement.content.boundedTo(screen).expandedTo(kMinimumContent);
  return {content, constrainedDivider(placement.leftPane, window(content).splitView.width())};
}

Settings settings(QSize content, int tagCount) {
  const int W = content.width();
  const int H = content.height();
  const int w = W - 2 * kMargin;
  const auto label = [&](int y, int height) { return fromBottom(H, kMargin, y, w, height); };
  Settings result;

  int y = H - 38;
  result.sectionLabels[0] = label(y, 22);
  result.sectionLabels[1] = label(y -= 26, 14);
  y -= 32;
  result.folderButton = fromBottom(H, W - 112, y, 96, 28);
  result.folderPathLabel = fromBottom(H, kMargin, y + 4, w - 106, 18);
  result.sectionLabels[2] = label(y -= 28, 14);
  y -= 32;
  result.backupButton = fromBottom(H, W - 132, y, 116, 28);
  result.backupPathLabel = fromBottom(H, kMargin, y + 4, w - 126, 18);
  result.sectionLabels[3] = label(y -= 28, 14);
  y -= 32;
  const int third = (w - 16) / 3;
  for (int i = 0; i < 3; ++i)
    result.destButtons[static_cast<std::size_t>(i)] = fromBottom(H, kMargin + i * (third + 8), y, third, 28);
  result.sectionLabels[4] = label(y -= 28, 14);
  y -= 32;
  for (int i = 0; i < tagCount; ++i)
    result.suffixButtons.push_back(fromBottom(H, kMargin + i * kTagStep, y, kTagWidth, 28));
  result.suffixManageButton = fromBottom(H, W - 76, y, 60, 28);
  result.resetButton = fromBottom(H, kMargin, std::max(16, y - 64), w, 30);
  return result;
}

}  // namespace ambrel::ui::layout
