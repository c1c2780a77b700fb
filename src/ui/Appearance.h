// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFont>
#include <QLineEdit>
#include <QPainter>

#include "core/backup/BackupView.h"
#include "core/base/StatusLine.h"
#include "ui/Palette.h"

class QApplication;

namespace ambrel::ui {

// The application's font: Inter where it is installed, else the platform's; colour emoji from Noto Color
// Emoji. A point of the design is one logical pixel.
QFont systemFont(int pixelSize, QFont::Weight weight = QFont::Normal);

// The light look of everything that paints itself through the toolkit: fields, menus, scroll bars, tool tips,
// the file chooser. Independent of the desktop's theme.
void applyApplicationAppearance(QApplication& application);
QString applicationStyleSheet(const Palette& palette);

// A line around a control that has the keyboard.
void paintFocusRing(QPainter& painter, const QRectF& shape, double cornerRadius);

void styleTextFieldBox(QLineEdit* field);
// The number in the "NEXT #" card: no frame, bold 18 in the brand colour.
void styleCounterField(QLineEdit* field);

QColor statusColor(StatusKind kind, const Palette& palette);
QColor backupColor(BackupColor color, const Palette& palette);

}  // namespace ambrel::ui
