// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>

namespace ambrel::ui {

// The line drawings on buttons.
enum class Symbol { None, CameraReconnect, Gear, Pencil, Folder };

// Draws the symbol in one colour, as shapes, so that it is sharp at any scale.
void paintSymbol(QPainter& painter, Symbol symbol, const QRectF& place, const QColor& tint);

}  // namespace ambrel::ui
