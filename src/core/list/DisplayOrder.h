// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <vector>

#include "core/list/NameGrid.h"
#include "core/list/SearchText.h"
#include "core/list/SortedNames.h"

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

// The rows that the table shows: a model row per display row. What a search or a sort needs of the list is
// prepared by the first of them and kept up to date, so that a key press costs little in a long list.
class DisplayOrder {
 public:
  const std::vector<qint64>& filteredRows() const { return _filteredRows; }
  // -1 when there is no such row.
  qint64 modelRowForDisplayRow(qint64 displayRow) const;
  qint64 displayRowForModelRow(qint64 modelRow) const;

  // Always the same grid.
  void rebuild(const NameGrid& grid, const DisplayRule& rule);
  void clear() { _filteredRows.clear(); }

 private:
  void updatePhotoFlags(const NameGrid& grid);
  void keepFilter(const NameGrid& grid, CaptureFilter filter);
  void putIntoOrder(const std::vector<qint64>& order);

  std::vector<qint64> _filteredRows;
  SearchText _searchText;
  SortedNames _sortedNames;
  std::vector<char> _hasPhotos;  // by model row
  std::uint64_t _photoFlagsRevision = 0;
};

}  // namespace ambrel
