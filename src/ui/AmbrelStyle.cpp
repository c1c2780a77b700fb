// SPDX-License-Identifier: Apache-2.0
#include "ui/AmbrelStyle.h"

#include <QIcon>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>

#include "ui/Palette.h"
#include "ui/Symbols.h"

namespace ambrel::ui {
namespace {

// Two chevrons that point to what is out of sight, painted when they are shown.
class MoreSign : public QIconEngine {
 public:
  void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
    constexpr double kBox = 16;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->translate(rect.topLeft());
    painter->scale(rect.width() / kBox, rect.height() / kBox);
    painter->setPen(QPen(Palette().primaryTextColor(), 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (const double x : {3.5, 8.5})
      painter->drawPolyline(QPolygonF({{x, 4}, {x + 4, 8}, {x, 12}}));
    painter->restore();
  }
  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap picture(size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return picture;
  }
  QIconEngine* clone() const override { return new MoreSign(*this); }
};

}  // namespace

AmbrelStyle::AmbrelStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

QIcon AmbrelStyle::standardIcon(StandardPixmap which, const QStyleOption* option,
                                const QWidget* widget) const {
  const QColor tint = Palette().grayColor();
  switch (which) {
    case SP_ToolBarHorizontalExtensionButton:
      return QIcon(new MoreSign);
    case SP_ArrowBack:
      return symbolIcon(Symbol::ArrowLeft, tint);
    case SP_ArrowForward:
      return symbolIcon(Symbol::ArrowRight, tint);
    case SP_FileDialogToParent:
      return symbolIcon(Symbol::ArrowUp, tint);
    case SP_FileDialogNewFolder:
      return symbolIcon(Symbol::FolderNew, tint);
    case SP_FileDialogListView:
      return symbolIcon(Symbol::Icons, tint);
    case SP_FileDialogDetailedView:
      return symbolIcon(Symbol::Lines, tint);
    default:
      return QProxyStyle::standardIcon(which, option, widget);
  }
}

int AmbrelStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                           QStyleHintReturn* returnData) const {
  // Only the choosers have letters to underline; nothing else in the window does.
  if (hint == SH_UnderlineShortcut) return 0;
  return QProxyStyle::styleHint(hint, option, widget, returnData);
}

}  // namespace ambrel::ui
