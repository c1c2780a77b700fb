// SPDX-License-Identifier: Apache-2.0
#include "ui/TableDrags.h"

#include <algorithm>

#include "ui/AmbrelDropZone.h"

namespace ambrel::ui {

DropPlace dropPlaceAt(int y, int rowHeight, qint64 rows) {
  const qint64 row = std::max(0, y) / rowHeight;
  if (row >= rows) return {false, rows};
  const qint64 within = std::max(0, y) - row * rowHeight;
  if (4 * within < rowHeight) return {false, row};
  if (4 * within >= 3 * qint64{rowHeight}) return {false, row + 1};
  return {true, row};
}

TableDrop tableDrop(const QMimeData& data, const DropPlace& place) {
  const QString type = QLatin1String(ListEditing::kRowReorderType);
  TableDrop drop{.paths = droppedPaths(data), .ontoRow = place.ontoRow, .displayRow = place.displayRow};
  if (!data.hasFormat(type)) return drop;
  bool isNumber = false;
  const qint64 row = data.data(type).toLongLong(&isNumber);
  drop.draggedRow = isNumber ? row : -1;
  return drop;
}

QMimeData* rowPayload(qint64 modelRow) {
  auto* data = new QMimeData;
  data->setData(QLatin1String(ListEditing::kRowReorderType), QByteArray::number(modelRow));
  return data;
}

}  // namespace ambrel::ui
