// SPDX-License-Identifier: Apache-2.0
#include "ui/AmbrelDropZone.h"

#include <QDropEvent>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMouseEvent>
#include <QPainter>
#include <QTextDocument>
#include <QTextOption>
#include <QUrl>

#include "core/list/ListEditing.h"
#include "ui/Appearance.h"

namespace ambrel::ui {
namespace {

constexpr int kInset = 16;
constexpr double kCornerRadius = 12;
constexpr double kLineWidth = 2;

QString invitation(const QColor& color) {
  const QString pasteKey = QKeySequence(QKeySequence::Paste).toString(QKeySequence::NativeText);
  return QStringLiteral(
             "<div align='center' style='color:rgba(%1,%2,%3,%4)'>"
             "<span style='font-size:17px; font-weight:700'>Your list is empty</span><br><br>"
             "Click to import a CSV<br>(only the first column is used)<br><br>or drag a CSV file here<br><br>"
             "or paste names with&nbsp; %5</div>")
      .arg(color.red())
      .arg(color.green())
      .arg(color.blue())
      .arg(color.alpha())
      .arg(pasteKey);
}

}  // namespace

QStringList droppedPaths(const QMimeData& data) {
  QStringList paths;
  for (const QUrl& url : data.urls())
    if (url.isLocalFile()) paths.append(url.toLocalFile());
  return paths;
}

AmbrelDropZone::AmbrelDropZone(QWidget* parent) : QWidget(parent) {
  setAcceptDrops(true);
  setCursor(Qt::PointingHandCursor);
  setFocusPolicy(Qt::TabFocus);
  setAccessibleName(QStringLiteral("Your list is empty. Click to import a CSV."));
}

void AmbrelDropZone::setBorderColor(const QColor& color) {
  _borderColor = color;
  update();
}

void AmbrelDropZone::setTextColor(const QColor& color) {
  _textColor = color;
  update();
}

void AmbrelDropZone::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF inner = QRectF(rect()).adjusted(kInset, kInset, -kInset, -kInset);
  QPen pen(_borderColor.isValid() ? _borderColor : Palette::systemGray(), kLineWidth);
  pen.setCapStyle(Qt::FlatCap);
  // Lengths of the dashes are in units of the line width: 8 on, 6 off.
  pen.setDashPattern({8 / kLineWidth, 6 / kLineWidth});
  painter.setPen(pen);
  painter.drawRoundedRect(inner, kCornerRadius, kCornerRadius);
  if (hasFocus()) paintFocusRing(painter, inner, kCornerRadius);

  QTextDocument text;
  text.setDefaultFont(systemFont(13));
  text.setDocumentMargin(0);
  text.setHtml(invitation(_textColor.isValid() ? _textColor : Palette::secondaryLabelColor()));
  text.setTextWidth(inner.width());
  painter.translate(inner.left(), inner.center().y() - text.size().height() / 2);
  text.drawContents(&painter);
}

void AmbrelDropZone::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && onClick) onClick();
}

void AmbrelDropZone::keyPressEvent(QKeyEvent* event) {
  const bool activates =
      event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  if (activates && onClick) {
    onClick();
  } else {
    QWidget::keyPressEvent(event);
  }
}

void AmbrelDropZone::dragEnterEvent(QDragEnterEvent* event) {
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

void AmbrelDropZone::dropEvent(QDropEvent* event) {
  const QStringList paths = droppedCSVPaths(droppedPaths(*event->mimeData()));
  if (paths.isEmpty() || !onDropPaths || !onDropPaths(paths)) {
    event->ignore();
    return;
  }
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

}  // namespace ambrel::ui
