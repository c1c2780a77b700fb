// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMimeData>

#include "core/list/ListEditing.h"

namespace ambrel::ui {

// Where in a table a drag would be dropped: onto a row, or between rows, above displayRow.
struct DropPlace {
  bool ontoRow = false;
  qint64 displayRow = 0;
  bool operator==(const DropPlace&) const = default;
};

// `y` counts from the top of the first row, in points; rows are all `rowHeight` high. The quarter of a row
// next to its edge is the place between it and its neighbour.
DropPlace dropPlaceAt(int y, int rowHeight, qint64 rows);

// What is dragged, at a place.
TableDrop tableDrop(const QMimeData& data, const DropPlace& place);

// A row of the table itself as a payload; only the table can read it.
QMimeData* rowPayload(qint64 modelRow);

}  // namespace ambrel::ui
