// SPDX-License-Identifier: Apache-2.0
#include "ui/Palette.h"

namespace ambrel::ui {
namespace {

QColor rgb(double red, double green, double blue) {
  return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green), static_cast<float>(blue));
}

}  // namespace

QColor Palette::brandColor() const {
  return rgb(0.2, 0.4, 0.6);
}
QColor Palette::brandDarkColor() const {
  return rgb(0.169, 0.337, 0.502);
}
QColor Palette::greenColor() const {
  return rgb(0.18, 0.62, 0.42);
}
QColor Palette::redColor() const {
  return rgb(0.839, 0.271, 0.255);
}
QColor Palette::grayColor() const {
  return rgb(0.353, 0.42, 0.471);
}
QColor Palette::orangeColor() const {
  return rgb(0.851, 0.569, 0.122);
}
QColor Palette::softPanelColor() const {
  return either(rgb(0.969, 0.98, 0.988), rgb(0.12, 0.13, 0.15));
}
QColor Palette::softBorderColor() const {
  return either(rgb(0.886, 0.91, 0.933), rgb(0.28, 0.3, 0.34));
}
QColor Palette::appBackgroundColor() const {
  return either(rgb(0.93, 0.95, 0.98), rgb(0.07, 0.08, 0.1));
}
QColor Palette::cardBackgroundColor() const {
  return either(white(1.0), rgb(0.1, 0.11, 0.13));
}
QColor Palette::fieldBackgroundColor() const {
  return either(white(1.0), rgb(0.15, 0.16, 0.18));
}
QColor Palette::previewBorderColor() const {
  return either(systemLightGray(), rgb(0.36, 0.38, 0.42));
}

QColor Palette::storageUnknownFill() const {
  return rgb(1.0, 0.95, 0.9);
}
QColor Palette::storageCriticalFill() const {
  return rgb(1.0, 0.93, 0.92);
}
QColor Palette::storageLowFill() const {
  return rgb(1.0, 0.97, 0.86);
}

QColor Palette::labelColor() {
  return withOpacity(Qt::black, 0.85);
}
QColor Palette::secondaryLabelColor() {
  return withOpacity(Qt::black, 0.5);
}
QColor Palette::tertiaryLabelColor() {
  return withOpacity(Qt::black, 0.26);
}
QColor Palette::systemLightGray() {
  return white(0.667);
}
QColor Palette::systemGray() {
  return white(0.5);
}
QColor Palette::selectedContentBackground() {
  return rgb(0.0, 0.388, 0.882);
}
QColor Palette::white(double level) {
  return rgb(level, level, level);
}

QColor blended(const QColor& color, double fraction, const QColor& other) {
  const auto mix = [fraction](float from, float to) {
    return static_cast<float>(static_cast<double>(from) * (1 - fraction) +
                              static_cast<double>(to) * fraction);
  };
  return QColor::fromRgbF(mix(color.redF(), other.redF()), mix(color.greenF(), other.greenF()),
                          mix(color.blueF(), other.blueF()), mix(color.alphaF(), other.alphaF()));
}

QColor withOpacity(QColor color, double opacity) {
  color.setAlphaF(static_cast<float>(opacity));
  return color;
}

}  // namespace ambrel::ui
