// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPainter>
#include <QRect>
#include <QString>

namespace ambrel::ui {

// Paints a line of text with the painter's font and pen, in the middle of the place's height, shortened with
// an ellipsis where it is too wide. Shapes it once, although it has to be measured before it is drawn.
void paintTextLine(QPainter& painter, const QRect& place, Qt::Alignment alignment, const QString& line,
                   Qt::TextElideMode elide = Qt::ElideRight);

}  // namespace ambrel::ui
