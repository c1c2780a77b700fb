// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <vector>

#include "core/list/NameGrid.h"

namespace ambrel {

enum class CaptureFilter { All = 0, WithPhotos = 1, Remaining = 2 };
enum class SortMode { ListOrder = 0, Ascending = 1, Descending = 2 };

CaptureFilter nextCaptureFilter(CaptureFilter filter);
QString captureFilterTitle(CaptureFilter filter);
QString captureFilterStatus(CaptureFilter filter);

SortMode nextSortMode(SortMode mode);
QString sortModeStatus(SortMode mode);
// "Name" and an arrow for the sort mode.
QString nameColumnBaseTitle(SortMode mode);

// What decides which rows are shown, and in which order.
struct DisplayRule {
  QString searchText;  // as typed
  CaptureFilter captureFilter = CaptureFilter::All;
  SortMode sortMode = SortMode::ListOrder;

  bool isSearchActive() const;
  // Display rows are model rows.
  bool showsListAsItIs() const;
};

// The rows that the table shows: a model row per display row.
class DisplayOrder {
 public:
  const std::vector<qint64>& filteredRows() const { return _filteredRows; }
  // -1 when there is no such row.
  qint64 modelRowForDisplayRow(qint64 displayRow) const;
  qint64 displayRowForModelRow(qint64 modelRow) const;

  void rebuild(const NameGrid& grid, const DisplayRule& rule);
  void clear() { _filteredRows.clear(); }

 private:
  std::vector<qint64> _filteredRows;
};

}  // namespace ambrel
