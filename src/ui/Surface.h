// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPainter>
#include <QWidget>

#include "ui/ButtonLook.h"

namespace ambrel::ui {

// A widget whose shadow lies outside its own rectangle. The surface that it stands on paints it.
class ShadowCaster {
 public:
  virtual ~ShadowCaster() = default;
  virtual Shadow shadow() const = 0;
  virtual double cornerRadius() const = 0;
};

// Paints the shadow of a rounded rectangle, as smooth at any scale.
void paintShadow(QPainter& painter, const QRectF& shape, double cornerRadius, const Shadow& shadow);
// The same for what covers the shape's middle afterwards: for a large shape, far cheaper.
void paintShadowAround(QPainter& painter, const QRectF& shape, double cornerRadius, const Shadow& shadow);
// Has the surface below `caster` repaint the places where its shadow can lie.
void updateShadowOf(QWidget* caster);

// A filled area, plain or as a rounded card with border and shadow, that paints the shadows of everything
// standing on it.
class Surface : public QWidget, public ShadowCaster {
  Q_OBJECT
 public:
  explicit Surface(QWidget* parent = nullptr);

  void setFill(const QColor& fill);
  QColor fill() const { return _fill; }
  // Corner radius 14, a border 1 wide and a soft shadow; `fill` invalid: the card background colour.
  void styleCardView(const QColor& fill = {});
  void setOutline(double cornerRadius, const QColor& border, const Shadow& shadow);

  Shadow shadow() const override { return _shadow; }
  double cornerRadius() const override { return _cornerRadius; }

 Q_SIGNALS:
  void resized();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  // It looks the same with the focus as without; the toolkit would paint it and all that stands on it again.
  void focusInEvent(QFocusEvent*) override {}
  void focusOutEvent(QFocusEvent*) override {}

 private:
  QColor _fill;
  QColor _border;  // invalid: none
  double _cornerRadius = 0;
  Shadow _shadow;
};

}  // namespace ambrel::ui
