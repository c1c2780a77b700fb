// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QProxyStyle>

namespace ambrel::ui {

// The toolkit's Fusion style, which the style sheet builds on.
class AmbrelStyle : public QProxyStyle {
  Q_OBJECT
 public:
  AmbrelStyle();
  // Every menu bar asks for the sign of the menus that do not fit. The toolkit's own are files, and looking
  // for what can read them loads every picture plug-in there is before the window is painted.
  // The file choosers' signs are drawn like those of the window.
  QIcon standardIcon(StandardPixmap which, const QStyleOption* option, const QWidget* widget) const override;
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* returnData) const override;
};

}  // namespace ambrel::ui
