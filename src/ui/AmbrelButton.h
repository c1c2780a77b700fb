// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QAbstractButton>
#include <QVariantAnimation>
#include <chrono>

#include "ui/Surface.h"
#include "ui/Symbols.h"

namespace ambrel::ui {

// A rounded push button in one colour that lightens on hover, with a raised shadow, and darkens while
// pressed.
class AmbrelButton : public QAbstractButton, public ShadowCaster {
  Q_OBJECT
 public:
  static constexpr std::chrono::milliseconds kFadeDuration{150};

  explicit AmbrelButton(QWidget* parent = nullptr);
  AmbrelButton(const QString& title, QWidget* parent);

  // Title in white on `color` (invalid: a light grey); disabled: dark grey on grey.
  void styleButton(const QString& title, const QColor& color, bool enabled);
  // Shows a symbol of `size` points in place of the title, which stays as the accessible name.
  void applySymbol(Symbol symbol, int size, const QColor& tint);
  bool showsSymbol() const { return _symbol != Symbol::None; }
  // No fill, no shadow: only the title or symbol.
  void setBorderless(bool borderless);
  void setTitlePixelSize(int pixelSize);

  void setAmbrelBaseColor(const QColor& color);
  QColor ambrelBaseColor() const { return _ambrelBaseColor; }
  // Takes on the look of the present state, at once or fading over kFadeDuration.
  void ambrelApplyState(bool animated);
  // The colour on the screen now; on its way to another one while a fade runs.
  QColor shownFill() const { return _shownFill; }

  Shadow shadow() const override { return _borderless ? Shadow{} : _shadow; }
  double cornerRadius() const override;
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void enterEvent(QEnterEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void showFill(const QColor& fill);

  bool _ambrelHover = false;
  bool _ambrelPressed = false;
  bool _borderless = false;
  QColor _ambrelBaseColor;
  QColor _textColor = Qt::white;
  QColor _shownFill;
  Shadow _shadow;
  Symbol _symbol = Symbol::None;
  int _symbolSize = 0;
  QVariantAnimation _fade;
};

}  // namespace ambrel::ui
