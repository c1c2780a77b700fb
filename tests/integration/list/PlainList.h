// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCollator>
#include <QString>
#include <string>
#include <vector>

#include "core/list/NameGrid.h"

namespace ambrel {

// A cell as it reads, also where the row is too short to have it.
std::string cellOf(const Row& row, std::size_t index, const char* missing = "");
// A cell as it stands in a CSV file.
std::string quotedCell(const std::string& text);

// What the list is to be: no caches, no indexes, every rule row by row.
class PlainList {
 public:
  using Rows = std::vector<Row>;
  using Indices = std::vector<qint64>;

  Rows rows;
  Indices shown;
  Indices tableSelection;  // display rows
  qint64 selected = -1;
  QString search;
  int filter = 0;
  int sort = 0;
  bool stored = false;

  qint64 count() const { return static_cast<qint64>(rows.size()); }
  bool contains(qint64 row) const { return row >= 0 && row < count(); }
  Row& row(qint64 index) { return rows[static_cast<std::size_t>(index)]; }
  const Row& row(qint64 index) const { return rows[static_cast<std::size_t>(index)]; }
  bool canReorder() const { return search.trimmed().isEmpty() && filter == 0 && sort == 0; }
  qint64 captured(qint64 index) const { return std::atol(cellOf(row(index), 2).c_str()); }
  // The row that a photo is counted on: the table's, of several the last, else the current person.
  qint64 captureRow() const;

  void refilter();
  void select(qint64 index);
  void setCell(qint64 index, std::size_t column, const std::string& value);
  // One more photo.
  void photographed(qint64 index);
  // The end of every edit that adds or removes rows.
  void rowsEdited(qint64 index);

  std::string storeText() const;
  // What is read back from that text.
  Rows afterReload() const;

 private:
  bool isShown(qint64 index) const;
  bool before(qint64 a, qint64 b) const;

  QCollator _collator = [] {
    QCollator collator{QLocale(QLocale::English)};
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
  }();
};

}  // namespace ambrel
