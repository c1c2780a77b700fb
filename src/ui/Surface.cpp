// SPDX-License-Identifier: Apache-2.0
#include "ui/Surface.h"

#include <QPaintEvent>
#include <QPixmapCache>
#include <algorithm>
#include <cmath>

#include "ui/Palette.h"
#include "ui/PixelGrid.h"

namespace ambrel::ui {
namespace {

constexpr double kCardCornerRadius = 14;
constexpr Shadow kCardShadow{0.08, 8, {0, 2}};
// No shadow of this application reaches further than this beyond its shape.
constexpr int kShadowReach = 12;
constexpr double kLayerStep = 0.5;

// Share of the full opacity at `distance` (-radius inside to +radius outside) from the shape's edge: the
// S-curve that a blurred edge has.
double shadowStrength(double distance, double radius) {
  const double t = std::clamp((radius - distance) / (2 * radius), 0.0, 1.0);
  return t * t * (3 - 2 * t);
}

// How far the shadow of a rounded shape reaches from each edge, in whole points.
struct ShadowSpread {
  ShadowSpread(double cornerRadius, const Shadow& shadow)
      : outside(static_cast<int>(std::ceil(shadow.radius))),
        inside(static_cast<int>(std::ceil(cornerRadius + shadow.radius))) {}
  int corner() const { return outside + inside; }
  int outside;
  int inside;  // until only the edge shapes it, not the corner
};

// Where the shadow of a caster can be seen: around it and in its four rounded corners, not below it.
QRegion visibleShadowRegion(const QRect& place, double cornerRadius) {
  const int corner = static_cast<int>(std::ceil(cornerRadius));
  return QRegion(place.adjusted(-kShadowReach, -kShadowReach, kShadowReach, kShadowReach)) -
         place.adjusted(corner, 0, -corner, 0) - place.adjusted(0, corner, 0, -corner);
}

// The shadow of the smallest shape that has four corners and one point of each edge, in the pixels of
// `scale`.
QPixmap shadowPatch(const ShadowSpread& spread, double cornerRadius, const Shadow& shadow, double scale) {
  const QString key = QStringLiteral("ambrel-shadow %1 %2 %3 %4")
                          .arg(cornerRadius)
                          .arg(shadow.radius)
                          .arg(shadow.opacity)
                          .arg(scale);
  QPixmap patch;
  if (QPixmapCache::find(key, &patch)) return patch;
  const double side = 2 * spread.corner() + 1;
  const int pixels = static_cast<int>(std::ceil(side * scale));
  patch = QPixmap(pixels, pixels);
  patch.fill(Qt::transparent);
  QPainter painter(&patch);
  painter.scale(scale, scale);
  const double inset = spread.outside;
  paintShadow(painter, QRectF(0, 0, side, side).adjusted(inset, inset, -inset, -inset), cornerRadius,
              {shadow.opacity, shadow.radius, {}});
  painter.end();
  QPixmapCache::insert(key, patch);
  return patch;
}

// Puts the shadow of `place` together from the patch: corners as they are, edges drawn out.
void paintShadowFromPatch(QPainter& painter, const QRectF& place, double cornerRadius, const Shadow& shadow) {
  const ShadowSpread spread(cornerRadius, shadow);
  const double scale = painter.deviceTransform().m11();
  const QPixmap patch = shadowPatch(spread, cornerRadius, shadow, scale);
  const double corner = spread.corner();
  const double from[] = {0, corner, corner + 1, 2 * corner + 1};
  const QRectF whole = place.translated(shadow.offset)
                           .adjusted(-spread.outside, -spread.outside, spread.outside, spread.outside);
  const double x[] = {whole.left(), whole.left() + corner, whole.right() - corner, whole.right()};
  const double y[] = {whole.top(), whole.top() + corner, whole.bottom() - corner, whole.bottom()};
  for (std::size_t row = 0; row < 3; ++row) {
    for (std::size_t column = 0; column < 3; ++column) {
      if (row == 1 && column == 1) continue;  // below the caster
      const QRectF source(from[column] * scale, from[row] * scale, (from[column + 1] - from[column]) * scale,
                          (from[row + 1] - from[row]) * scale);
      painter.drawPixmap(QRectF(x[column], y[row], x[column + 1] - x[column], y[row + 1] - y[row]), patch,
                         source);
    }
  }
}

void paintCasterShadow(QPainter& painter, const ShadowCaster& caster, const QRect& place,
                       const QRect& dirty) {
  const QRegion visible = visibleShadowRegion(place, caster.cornerRadius()) & dirty;
  if (visible.isEmpty()) return;
  painter.save();
  painter.setClipRegion(visible, Qt::IntersectClip);
  paintShadowAround(painter, place, caster.cornerRadius(), caster.shadow());
  painter.restore();
}

void paintShadowsBelow(QPainter& painter, const QWidget* surface, const QWidget* container,
                       const QRect& dirty) {
  for (const QObject* object : container->children()) {
    const auto* child = qobject_cast<const QWidget*>(object);
    if (!child || child->isWindow() || !child->isVisibleTo(surface)) continue;
    const QRect place(child->mapTo(surface, QPoint(0, 0)), child->size());
    if (const auto* caster = dynamic_cast<const ShadowCaster*>(child))
      paintCasterShadow(painter, *caster, place, dirty);
    if (!qobject_cast<const Surface*>(child)) paintShadowsBelow(painter, surface, child, dirty);
  }
}

}  // namespace

void paintShadow(QPainter& painter, const QRectF& shape, double cornerRadius, const Shadow& shadow) {
  if (shadow.opacity <= 0 || shadow.radius <= 0) return;
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  const int layers = static_cast<int>(std::ceil(2 * shadow.radius / kLayerStep));
  double laidDown = 0;
  for (int i = 0; i < layers; ++i) {
    const double distance = shadow.radius - i * kLayerStep;
    const double wanted = shadow.opacity * shadowStrength(distance, shadow.radius);
    // Each layer adds what is still missing at its distance, given the layers already below it.
    const double layer = (wanted - laidDown) / (1 - laidDown);
    laidDown = wanted;
    const double radius = std::max(0.0, cornerRadius + distance);
    const QRectF ring = shape.translated(shadow.offset).adjusted(-distance, -distance, distance, distance);
    if (ring.isEmpty()) break;
    painter.setBrush(QColor::fromRgbF(0, 0, 0, static_cast<float>(layer)));
    painter.drawRoundedRect(ring, radius, radius);
  }
  painter.restore();
}

void paintShadowAround(QPainter& painter, const QRectF& shape, double cornerRadius, const Shadow& shadow) {
  if (shadow.opacity <= 0 || shadow.radius <= 0) return;
  // Shapes in layers are dear on a large card.
  const double least = 2 * ShadowSpread(cornerRadius, shadow).inside;
  if (shape.width() > least && shape.height() > least) {
    paintShadowFromPatch(painter, shape, cornerRadius, shadow);
  } else {
    paintShadow(painter, shape, cornerRadius, shadow);
  }
}

void updateShadowOf(QWidget* caster) {
  QWidget* below = caster->parentWidget();
  while (below && !qobject_cast<Surface*>(below))
    below = below->parentWidget();
  if (!below) return;
  const QRect place(caster->mapTo(below, QPoint(0, 0)), caster->size());
  below->update(place.adjusted(-kShadowReach, -kShadowReach, kShadowReach, kShadowReach));
}

Surface::Surface(QWidget* parent) : QWidget(parent) {}

void Surface::setFill(const QColor& fill) {
  if (_fill == fill) return;
  _fill = fill;
  update();
}

void Surface::styleCardView(const QColor& fill) {
  const Palette palette;
  setFill(fill.isValid() ? fill : palette.cardBackgroundColor());
  setOutline(kCardCornerRadius, palette.softBorderColor(), kCardShadow);
}

void Surface::setOutline(double cornerRadius, const QColor& border, const Shadow& shadow) {
  _cornerRadius = cornerRadius;
  _border = border;
  _shadow = shadow;
  update();
  updateShadowOf(this);
}

void Surface::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  if (_cornerRadius <= 0) {
    painter.fillRect(rect(), _fill);
  } else {
    painter.setRenderHint(QPainter::Antialiasing);
    const double line = _border.isValid() ? hairline(painter) : 0;
    painter.setPen(_border.isValid() ? QPen(_border, line) : QPen(Qt::NoPen));
    painter.setBrush(_fill);
    const double inset = line / 2;
    const QRectF shape = onWholePixels(painter, rect()).adjusted(inset, inset, -inset, -inset);
    painter.drawRoundedRect(shape, _cornerRadius - inset, _cornerRadius - inset);
  }
  paintShadowsBelow(painter, this, this, event->rect());
}

void Surface::resizeEvent(QResizeEvent*) {
  Q_EMIT resized();
}

}  // namespace ambrel::ui
