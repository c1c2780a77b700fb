// SPDX-License-Identifier: Apache-2.0
#include "ui/AmbrelTableView.h"

#include <QHeaderView>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>

#include "ui/Appearance.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

constexpr int kIntercellHeight = 2;
constexpr double kPillInsetX = 4;
constexpr double kPillInsetY = 1.5;
constexpr double kPillCornerRadius = 7;

}  // namespace

AmbrelTableView::AmbrelTableView(QWidget* parent) : QTableView(parent) {
  setShowGrid(false);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setSelectionMode(QAbstractItemView::ExtendedSelection);
  setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setWordWrap(false);
  setTabKeyNavigation(false);
  // The scroll bar begins below the header, which reaches over it.
  auto* headerEnd = new QFrame;
  headerEnd->setObjectName(QStringLiteral("headerEnd"));
  headerEnd->setFixedHeight(layout::kTableHeaderHeight);
  addScrollBarWidget(headerEnd, Qt::AlignTop);
  setAccessibleName(QStringLiteral("Names"));
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(layout::kTableRowHeight + kIntercellHeight);
  horizontalHeader()->setFixedHeight(layout::kTableHeaderHeight);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setFont(systemFont(11, QFont::DemiBold));
  // The pills are painted below the cells; the toolkit's own highlight must not cover them.
  QPalette colors = palette();
  colors.setColor(QPalette::Highlight, Qt::transparent);
  setPalette(colors);
}

void AmbrelTableView::setAmbrelSelectionColor(const QColor& color) {
  _ambrelSelectionColor = color;
  viewport()->update();
}

std::vector<qint64> AmbrelTableView::selectedDisplayRows() const {
  std::vector<qint64> rows;
  if (!selectionModel()) return rows;
  for (const QItemSelectionRange& range : selectionModel()->selection())
    for (int row = range.top(); row <= range.bottom(); ++row)
      rows.push_back(row);
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  return rows;
}

void AmbrelTableView::selectDisplayRows(const std::vector<qint64>& rows, bool scroll) {
  QItemSelection selection;
  const int lastColumn = model()->columnCount() - 1;
  for (std::size_t first = 0, next = 0; first < rows.size(); first = next) {
    next = first + 1;
    while (next < rows.size() && rows[next] == rows[next - 1] + 1)
      ++next;
    selection.select(model()->index(static_cast<int>(rows[first]), 0),
                     model()->index(static_cast<int>(rows[next - 1]), lastColumn));
  }
  _selectingFromList = true;
  if (!rows.empty()) {
    // The cell that the edit key opens.
    const QModelIndex current = model()->index(static_cast<int>(rows.front()), std::min(1, lastColumn));
    // A new current cell would otherwise scroll the table, asked for or not.
    setAutoScroll(false);
    selectionModel()->setCurrentIndex(current, QItemSelectionModel::NoUpdate);
    setAutoScroll(true);
    if (scroll) scrollTo(current);
  }
  selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
  _selectingFromList = false;
}

bool AmbrelTableView::isRowSelected(int row) const {
  return selectionModel() && selectionModel()->isSelected(model()->index(row, 0));
}

void AmbrelTableView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
  QTableView::selectionChanged(selected, deselected);
  for (const QItemSelection* changed : {&selected, &deselected})
    for (const QItemSelectionRange& range : *changed)
      updateRows(range.top(), range.bottom());
  if (!_selectingFromList) Q_EMIT selectionChangedByOperator();
}

void AmbrelTableView::updateRows(int first, int last) {
  const int top = rowViewportPosition(first);
  const int bottom = rowViewportPosition(last) + rowHeight(last);
  // The pill reaches over the columns' ends.
  viewport()->update(QRect(0, top, viewport()->width(), bottom - top) & viewport()->rect());
}

void AmbrelTableView::paintEvent(QPaintEvent* event) {
  QPainter painter(viewport());
  paintRowBackgrounds(painter, event->rect());
  painter.end();
  QTableView::paintEvent(event);
}

void AmbrelTableView::paintRowBackgrounds(QPainter& painter, const QRect& dirty) const {
  const Palette colors;
  const QColor pill =
      _ambrelSelectionColor.isValid() ? _ambrelSelectionColor : Palette::selectedContentBackground();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  const int firstRow = rowAt(std::max(0, dirty.top()));
  for (int row = firstRow; row >= 0 && row < model()->rowCount(); ++row) {
    const QRectF place(0, rowViewportPosition(row), viewport()->width(), rowHeight(row));
    if (place.top() > dirty.bottom()) break;
    if (row % 2 == 1) painter.fillRect(place, colors.softPanelColor());
    if (!isRowSelected(row)) continue;
    painter.setBrush(pill);
    painter.drawRoundedRect(place.adjusted(kPillInsetX, kPillInsetY, -kPillInsetX, -kPillInsetY),
                            kPillCornerRadius, kPillCornerRadius);
  }
}

}  // namespace ambrel::ui
