// SPDX-License-Identifier: Apache-2.0
#include "ui/AmbrelButton.h"

#include <QEvent>
#include <QMouseEvent>
#include <algorithm>

#include "ui/Appearance.h"
#include "ui/PixelGrid.h"
#include "ui/TextLine.h"

namespace ambrel::ui {
namespace {

constexpr double kButtonCornerRadius = 10;
constexpr int kTitlePixelSize = 13;
constexpr int kTitleMargin = 16;
constexpr int kPreferredHeight = 30;

}  // namespace

AmbrelButton::AmbrelButton(QWidget* parent) : AmbrelButton(QString(), parent) {}

AmbrelButton::AmbrelButton(const QString& title, QWidget* parent) : QAbstractButton(parent) {
  setFont(systemFont(kTitlePixelSize, QFont::DemiBold));
  setFocusPolicy(Qt::TabFocus);
  setCursor(Qt::PointingHandCursor);
  _fade.setDuration(static_cast<int>(kFadeDuration.count()));
  _fade.setEasingCurve(QEasingCurve::OutCubic);
  connect(&_fade, &QVariantAnimation::valueChanged, this,
          [this](const QVariant& value) { showFill(value.value<QColor>()); });
  styleButton(title, {}, true);
}

void AmbrelButton::styleButton(const QString& title, const QColor& color, bool enabled) {
  setText(title);
  setEnabled(enabled);
  _textColor = enabled ? QColor(Qt::white) : Palette::white(0.35);
  setAmbrelBaseColor(!enabled ? Palette::white(0.7) : color.isValid() ? color : Palette::white(0.72));
}

void AmbrelButton::applySymbol(Symbol symbol, int size, const QColor& tint) {
  _symbol = symbol;
  _symbolSize = size;
  _textColor = tint;
  update();
}

void AmbrelButton::setBorderless(bool borderless) {
  _borderless = borderless;
  update();
  updateShadowOf(this);
}

void AmbrelButton::setTitlePixelSize(int pixelSize) {
  setFont(systemFont(pixelSize, QFont::DemiBold));
}

void AmbrelButton::setAmbrelBaseColor(const QColor& color) {
  _ambrelBaseColor = color;
  ambrelApplyState(false);
}

void AmbrelButton::ambrelApplyState(bool animated) {
  const ButtonLook look = buttonLook({isEnabled(), _ambrelPressed, _ambrelHover, _ambrelBaseColor});
  _fade.stop();
  if (animated && _shownFill.isValid() && _shownFill != look.fill) {
    _fade.setStartValue(_shownFill);
    _fade.setEndValue(look.fill);
    _fade.start();
  } else {
    showFill(look.fill);
  }
  if (_shadow == look.shadow) return;
  _shadow = look.shadow;
  updateShadowOf(this);
}

double AmbrelButton::cornerRadius() const {
  return std::min(kButtonCornerRadius, std::min(width(), height()) / 2.0);
}

QSize AmbrelButton::sizeHint() const {
  return {fontMetrics().horizontalAdvance(text()) + 2 * kTitleMargin, kPreferredHeight};
}

void AmbrelButton::showFill(const QColor& fill) {
  _shownFill = fill;
  update();
}

void AmbrelButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (!_borderless) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(_shownFill);
    painter.drawRoundedRect(onWholePixels(painter, rect()), cornerRadius(), cornerRadius());
  }
  if (hasFocus()) paintFocusRing(painter, onWholePixels(painter, rect()), cornerRadius());
  if (_symbol != Symbol::None) {
    QRectF place(0, 0, _symbolSize, _symbolSize);
    place.moveCenter(QRectF(rect()).center());
    paintSymbol(painter, _symbol, place, _textColor);
    return;
  }
  painter.setFont(font());
  painter.setPen(_textColor);
  paintTextLine(painter, rect().adjusted(2, 0, -2, 0), Qt::AlignCenter, text());
}

void AmbrelButton::enterEvent(QEnterEvent* event) {
  QAbstractButton::enterEvent(event);
  _ambrelHover = true;
  ambrelApplyState(true);
}

void AmbrelButton::leaveEvent(QEvent* event) {
  QAbstractButton::leaveEvent(event);
  _ambrelHover = false;
  ambrelApplyState(true);
}

void AmbrelButton::mousePressEvent(QMouseEvent* event) {
  _ambrelPressed = isEnabled() && event->button() == Qt::LeftButton;
  ambrelApplyState(false);
  QAbstractButton::mousePressEvent(event);
}

void AmbrelButton::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    // Before the action runs, which may disable or even hide this button.
    _ambrelPressed = false;
    _ambrelHover = rect().contains(event->position().toPoint());
    ambrelApplyState(true);
  }
  QAbstractButton::mouseReleaseEvent(event);
}

void AmbrelButton::changeEvent(QEvent* event) {
  QAbstractButton::changeEvent(event);
  if (event->type() != QEvent::EnabledChange) return;
  // A disabled widget hears no release, so it must not wait for one.
  if (!isEnabled()) _ambrelPressed = false;
  if (isEnabled()) {
    setCursor(Qt::PointingHandCursor);
  } else {
    unsetCursor();
  }
  ambrelApplyState(false);
}

}  // namespace ambrel::ui
