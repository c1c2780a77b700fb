// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QTableView>
#include <vector>

namespace ambrel::ui {

// A table whose selected rows are rounded pills.
class AmbrelTableView : public QTableView {
  Q_OBJECT
 public:
  explicit AmbrelTableView(QWidget* parent = nullptr);

  // Invalid: the system's colour of selected content.
  void setAmbrelSelectionColor(const QColor& color);
  QColor ambrelSelectionColor() const { return _ambrelSelectionColor; }

  // Rows selected, in ascending order.
  std::vector<qint64> selectedDisplayRows() const;
  // Selects exactly these rows; with `scroll` the first of them is scrolled into view.
  void selectDisplayRows(const std::vector<qint64>& rows, bool scroll);
  bool isRowSelected(int row) const;

 Q_SIGNALS:
  // The operator, not selectDisplayRows, changed the selection.
  void selectionChangedByOperator();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

 private:
  void updateRows(int first, int last);
  void paintRowBackgrounds(QPainter& painter, const QRect& dirty) const;

  QColor _ambrelSelectionColor;
  bool _selectingFromList = false;
};

}  // namespace ambrel::ui
