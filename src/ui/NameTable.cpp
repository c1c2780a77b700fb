// SPDX-License-Identifier: Apache-2.0
#include "ui/NameTable.h"

#include <QContextMenuEvent>
#include <QDrag>
#include <QDropEvent>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>

#include "ui/Appearance.h"
#include "ui/NameTableDelegate.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

constexpr int kMarkerWidth = 44;
constexpr int kCountWidth = 58;
constexpr int kSmallestColumn = 30;
constexpr double kOutlineInset = 2.5;
constexpr double kOutlineRadius = 7;
constexpr QSize kDragPictureSize{220, 30};

int columnIndex(NameColumn column) {
  return static_cast<int>(column);
}

Qt::DropAction dropAction(DropAnswer answer) {
  switch (answer) {
    case DropAnswer::None:
      return Qt::IgnoreAction;
    case DropAnswer::Move:
      return Qt::MoveAction;
    case DropAnswer::Copy:
      return Qt::CopyAction;
  }
  return Qt::IgnoreAction;
}

}  // namespace

NameTable::NameTable(NameList& list, ListEditing& editing, QWidget* parent)
    : AmbrelTableView(parent), _list(list), _editing(editing), _model(new NameTableModel(list, this)) {
  setModel(_model);
  setItemDelegate(new NameTableDelegate(this));
  setAmbrelSelectionColor(Palette().brandColor());
  setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
  setDragEnabled(true);
  setAcceptDrops(true);
  viewport()->setAcceptDrops(true);
  buildColumns();
}

void NameTable::buildColumns() {
  QHeaderView* header = horizontalHeader();
  header->setSectionsClickable(true);
  header->setMinimumSectionSize(kSmallestColumn);
  header->setSectionResizeMode(columnIndex(NameColumn::Marker), QHeaderView::Fixed);
  header->setSectionResizeMode(columnIndex(NameColumn::Name), QHeaderView::Stretch);
  header->setSectionResizeMode(columnIndex(NameColumn::Count), QHeaderView::Fixed);
  header->resizeSection(columnIndex(NameColumn::Marker), kMarkerWidth);
  header->resizeSection(columnIndex(NameColumn::Count), kCountWidth);
}

// ---- Clicks and the menu of a row

void NameTable::mousePressEvent(QMouseEvent* event) {
  // The toolkit would select the row under the right button, and with it choose another person.
  if (event->button() != Qt::RightButton) AmbrelTableView::mousePressEvent(event);
}

void NameTable::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::RightButton) return;
  const bool dragged = state() == DragSelectingState || state() == DraggingState;
  AmbrelTableView::mouseReleaseEvent(event);
  if (event->button() != Qt::LeftButton || dragged) return;
  const QModelIndex hit = indexAt(event->position().toPoint());
  Q_EMIT tableClicked(hit.row(), hit.column());
}

void NameTable::contextMenuEvent(QContextMenuEvent* event) {
  const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
  const QModelIndex clicked = byKey ? QModelIndex() : indexAt(event->pos());
  const qint64 target = _editing.contextTargetModelRow(clicked.row());
  _rowOfMenu = _list.displayRowForModelRow(target);
  _rowMenu = buildRowContextMenu(
      this, [this, target](RowCommand command) { Q_EMIT rowCommandChosen(command, target); });
  _rowMenu->setAttribute(Qt::WA_DeleteOnClose);
  connect(_rowMenu, &QMenu::aboutToHide, this, [this] {
    _rowOfMenu = -1;
    viewport()->update();
  });
  const QPoint below = visualRect(_model->index(static_cast<int>(_rowOfMenu), 0)).bottomLeft();
  _rowMenu->popup(byKey ? viewport()->mapToGlobal(below) : event->globalPos());
  viewport()->update();
}

// ---- Drags

void NameTable::startDrag(Qt::DropActions) {
  const std::vector<qint64> rows = selectedDisplayRows();
  const qint64 row = rows.empty() ? -1 : _list.modelRowForDisplayRow(rows.front());
  if (!_list.grid().contains(row)) return;
  auto* drag = new QDrag(this);
  drag->setMimeData(rowPayload(row));
  drag->setPixmap(pictureOfRow(row));
  drag->setHotSpot(QPoint(12, kDragPictureSize.height() / 2));
  drag->exec(Qt::MoveAction | Qt::CopyAction, Qt::MoveAction);
  showDrop(std::nullopt);
}

TableDrop NameTable::dropUnder(const QDropEvent& event) const {
  const int y = event.position().toPoint().y() + verticalScrollBar()->value();
  return tableDrop(*event.mimeData(),
                   dropPlaceAt(y, verticalHeader()->defaultSectionSize(), _model->rowCount()));
}

void NameTable::dragEnterEvent(QDragEnterEvent* event) {
  dragMoveEvent(event);
}

void NameTable::dragMoveEvent(QDragMoveEvent* event) {
  const TableDrop drop = dropUnder(*event);
  const DropAnswer answer = _editing.validateDrop(drop);
  // A row that may not be moved is still taken, so that dropping it can say why.
  const bool heard = answer != DropAnswer::None || (drop.draggedRow && !drop.ontoRow);
  event->setDropAction(dropAction(answer));
  event->setAccepted(heard);
  showDrop(answer == DropAnswer::None ? std::nullopt : std::optional(drop));
  const int y = event->position().toPoint().y();
  if (y < autoScrollMargin() || y > viewport()->height() - autoScrollMargin()) startAutoScroll();
}

void NameTable::dragLeaveEvent(QDragLeaveEvent*) {
  stopAutoScroll();
  showDrop(std::nullopt);
}

void NameTable::dropEvent(QDropEvent* event) {
  stopAutoScroll();
  showDrop(std::nullopt);
  const TableDrop drop = dropUnder(*event);
  event->setDropAction(dropAction(_editing.validateDrop(drop)));
  event->setAccepted(_editing.acceptDrop(drop));
}

void NameTable::showDrop(const std::optional<TableDrop>& drop) {
  _shownDrop = drop;
  viewport()->update();
}

// ---- Painting

void NameTable::paintEvent(QPaintEvent* event) {
  AmbrelTableView::paintEvent(event);
  if (_rowOfMenu < 0 && !_shownDrop) return;
  QPainter painter(viewport());
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(Palette().brandDarkColor(), 2));
  if (_rowOfMenu >= 0) paintOutline(painter, _rowOfMenu);
  if (_shownDrop) paintDrop(painter, *_shownDrop);
}

void NameTable::paintOutline(QPainter& painter, qint64 displayRow) const {
  const int row = static_cast<int>(displayRow);
  const QRectF place(0, rowViewportPosition(row), viewport()->width(), rowHeight(row));
  painter.setBrush(Qt::NoBrush);
  painter.drawRoundedRect(place.adjusted(kOutlineInset, kOutlineInset, -kOutlineInset, -kOutlineInset),
                          kOutlineRadius, kOutlineRadius);
}

void NameTable::paintDrop(QPainter& painter, const TableDrop& drop) const {
  if (!drop.draggedRow) {
    painter.drawRoundedRect(
        QRectF(viewport()->rect()).adjusted(kOutlineInset, kOutlineInset, -kOutlineInset, -kOutlineInset),
        kOutlineRadius, kOutlineRadius);
  } else if (drop.ontoRow) {
    paintOutline(painter, drop.displayRow);
  } else {
    constexpr double kEndRadius = 3;
    const double y =
        std::max<double>(static_cast<double>(drop.displayRow) * verticalHeader()->defaultSectionSize() -
                             verticalScrollBar()->value(),
                         kEndRadius);
    const double right = viewport()->width() - 6;
    painter.drawEllipse(QPointF(6 + kEndRadius, y), kEndRadius, kEndRadius);
    painter.drawLine(QPointF(6 + 2 * kEndRadius, y), QPointF(right, y));
  }
}

QPixmap NameTable::pictureOfRow(qint64 modelRow) const {
  QPixmap picture(kDragPictureSize * devicePixelRatioF());
  picture.setDevicePixelRatio(devicePixelRatioF());
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(withOpacity(ambrelSelectionColor(), 0.9));
  painter.drawRoundedRect(QRectF(QPointF(), kDragPictureSize), kOutlineRadius, kOutlineRadius);
  const QFont font = systemFont(13, QFont::DemiBold);
  const QRect place = QRect(QPoint(), kDragPictureSize).adjusted(12, 0, -12, 0);
  painter.setFont(font);
  painter.setPen(Qt::white);
  painter.drawText(
      place, Qt::AlignVCenter | Qt::TextSingleLine,
      QFontMetrics(font).elidedText(_list.grid().text(modelRow, Cell::Name), Qt::ElideRight, place.width()));
  return picture;
}

}  // namespace ambrel::ui
