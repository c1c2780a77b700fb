// SPDX-License-Identifier: Apache-2.0
#include "ui/NameTableDelegate.h"

#include <QLineEdit>
#include <QPainter>
#include <QPixmapCache>

#include "ui/Appearance.h"
#include "ui/NameTableModel.h"
#include "ui/TextLine.h"

namespace ambrel::ui {
namespace {

constexpr int kCellMargin = 8;

// The glyphs of the markers are pictures in the font, which would be decompressed for every row anew.
void paintGlyphs(QPainter& painter, const QRect& place, const QString& glyphs) {
  const double scale = painter.deviceTransform().m11();
  const QString key = QStringLiteral("ambrel-glyphs %1 %2 %3x%4 %5")
                          .arg(glyphs, painter.font().key())
                          .arg(place.width())
                          .arg(place.height())
                          .arg(scale);
  QPixmap picture;
  if (!QPixmapCache::find(key, &picture)) {
    picture = QPixmap((QSizeF(place.size()) * scale).toSize());
    picture.setDevicePixelRatio(scale);
    picture.fill(Qt::transparent);
    QPainter inside(&picture);
    inside.setFont(painter.font());
    inside.setPen(painter.pen());
    inside.drawText(QRect(QPoint(), place.size()), Qt::AlignCenter | Qt::TextSingleLine, glyphs);
    inside.end();
    QPixmapCache::insert(key, picture);
  }
  painter.drawPixmap(place.topLeft(), picture);
}

}  // namespace

void NameTableDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const {
  const auto* model = qobject_cast<const NameTableModel*>(index.model());
  Q_ASSERT(model);
  const QString text = index.data().toString();
  if (text.isEmpty()) return;
  const NameCellLook look = model->look(index, option.state.testFlag(QStyle::State_Selected));
  const bool centred = look.alignment.testFlag(Qt::AlignHCenter);
  const int margin = centred ? 2 : kCellMargin;
  const QRect place = option.rect.adjusted(margin, 0, -margin, 0);
  const bool glyphs = index.column() == static_cast<int>(NameColumn::Marker);
  painter->save();
  painter->setFont(fontOf(look));
  painter->setPen(look.color);
  if (glyphs) {
    paintGlyphs(*painter, place, text);
  } else {
    paintTextLine(*painter, place, look.alignment,
                  QString(text).replace(QLatin1Char('\n'), QLatin1Char(' ')));
  }
  painter->restore();
}

const QFont& NameTableDelegate::fontOf(const NameCellLook& look) const {
  const auto key = std::make_pair(look.pixelSize, look.weight);
  const auto known = _fonts.find(key);
  return known != _fonts.end() ? known->second
                               : _fonts.emplace(key, systemFont(look.pixelSize, look.weight)).first->second;
}

QWidget* NameTableDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                         const QModelIndex&) const {
  auto* editor = new QLineEdit(parent);
  editor->setObjectName(QStringLiteral("cellEditor"));
  editor->setFont(systemFont(13));
  return editor;
}

void NameTableDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  auto* field = qobject_cast<QLineEdit*>(editor);
  if (field && !field->isModified()) field->setText(index.data(Qt::EditRole).toString());
}

void NameTableDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                             const QModelIndex&) const {
  editor->setGeometry(option.rect.adjusted(3, 4, -3, -4));
}

}  // namespace ambrel::ui
