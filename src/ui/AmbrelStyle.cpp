// SPDX-License-Identifier: Apache-2.0
#include "ui/AmbrelStyle.h"

#include <QIcon>

#include "ui/Palette.h"
#include "ui/Symbols.h"

namespace ambrel::ui {

AmbrelStyle::AmbrelStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

QIcon AmbrelStyle::standardIcon(StandardPixmap which, const QStyleOption* option,
                                const QWidget* widget) const {
  const QColor tint = Palette().grayColor();
  switch (which) {
    case SP_ToolBarHorizontalExtensionButton:
      return symbolIcon(Symbol::More, Palette().primaryTextColor());
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
