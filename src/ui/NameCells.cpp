// SPDX-License-Identifier: Apache-2.0
#include "ui/NameCells.h"

namespace ambrel::ui {
namespace {

constexpr int kNamePixelSize = 13;
constexpr int kCountPixelSize = 12;
constexpr int kMarkerPixelSize = 13;
constexpr Qt::Alignment kCentred = Qt::AlignCenter;
constexpr Qt::Alignment kLeft = Qt::AlignLeft | Qt::AlignVCenter;

NameCellLook nameLook(const NameCellState& state, const Palette& palette) {
  const QFont::Weight byCount = state.captured >= 1 ? QFont::Bold : QFont::Normal;
  if (state.selected) return {Qt::white, kNamePixelSize, byCount, kLeft};
  if (state.duplicate) return {palette.redColor(), kNamePixelSize, QFont::Normal, kLeft};
  const QColor color = state.captured >= 1 ? palette.greenColor() : palette.primaryTextColor();
  return {color, kNamePixelSize, byCount, kLeft};
}

}  // namespace

NameCellLook nameCellLook(NameColumn column, const NameCellState& state, const Palette& palette) {
  switch (column) {
    case NameColumn::Marker:
      return {palette.primaryTextColor(), kMarkerPixelSize, QFont::Normal, kCentred};
    case NameColumn::Count:
      return {state.selected ? QColor(Qt::white) : palette.brandColor(), kCountPixelSize, QFont::Bold,
              kCentred};
    case NameColumn::Name:
      return nameLook(state, palette);
  }
  return {};
}

QString nameCellText(const NameGrid& grid, std::int64_t modelRow, NameColumn column) {
  switch (column) {
    case NameColumn::Marker: {
      QString glyphs;
      if (grid.markerForModelRow(modelRow)) glyphs += QStringLiteral("🚩");
      if (!grid.bytes(modelRow, Cell::Note).empty()) glyphs += QStringLiteral("📝");
      return glyphs;
    }
    case NameColumn::Name:
      return grid.text(modelRow, Cell::Name);
    case NameColumn::Count: {
      const std::int64_t captured = grid.capturedForModelRow(modelRow);
      return captured >= 1 ? QString::number(captured) : QString();
    }
  }
  return {};
}

QString nameCellToolTip(const NameGrid& grid, std::int64_t modelRow, NameColumn column) {
  if (column == NameColumn::Count || grid.bytes(modelRow, Cell::Note).empty()) return {};
  return QStringLiteral("📝 ") + grid.text(modelRow, Cell::Note);
}

QString nameColumnHeader(NameColumn column) {
  switch (column) {
    case NameColumn::Marker:
      return QStringLiteral("🚩");
    case NameColumn::Name:
      return QStringLiteral("Name");
    case NameColumn::Count:
      return QStringLiteral("Count");
  }
  return {};
}

QString nameColumnToolTip(NameColumn column) {
  switch (column) {
    case NameColumn::Marker:
      return QStringLiteral("Segment markers. Click a row's cell to flag where a segment started.");
    case NameColumn::Name:
      return QStringLiteral(
          "Folder/file name for each person. Green = has photos. Click header to sort; "
          "double-click a row for its settings.");
    case NameColumn::Count:
      return QStringLiteral(
          "Number of photos on disk for this name (all its folders, including "
          "suffix-tagged ones).");
  }
  return {};
}

}  // namespace ambrel::ui
