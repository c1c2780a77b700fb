// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QColor>
#include <QFont>
#include <QString>

#include "core/list/NameGrid.h"
#include "ui/Palette.h"

namespace ambrel::ui {

// The columns of the name table, from left to right.
enum class NameColumn { Marker = 0, Name = 1, Count = 2 };
inline constexpr int kNameColumns = 3;

struct NameCellState {
  bool selected = false;
  bool duplicate = false;  // another row has the same name but for letter case
  std::int64_t captured = 0;
};

struct NameCellLook {
  QColor color;
  int pixelSize = 13;
  QFont::Weight weight = QFont::Normal;
  Qt::Alignment alignment = Qt::AlignLeft | Qt::AlignVCenter;
  bool operator==(const NameCellLook&) const = default;
};

NameCellLook nameCellLook(NameColumn column, const NameCellState& state, const Palette& palette);

// What a cell shows: "🚩" and "📝" in the marker column, the name, the count from 1 upwards.
QString nameCellText(const NameGrid& grid, std::int64_t modelRow, NameColumn column);
// The note behind "📝 ", on the marker and name columns of a row that has one.
QString nameCellToolTip(const NameGrid& grid, std::int64_t modelRow, NameColumn column);

// Title (of the name column without sort arrow and count) and tooltip of a column's header.
QString nameColumnHeader(NameColumn column);
QString nameColumnToolTip(NameColumn column);

}  // namespace ambrel::ui
