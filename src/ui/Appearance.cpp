// SPDX-License-Identifier: Apache-2.0
#include "ui/Appearance.h"

#include <QApplication>
#include <QFontDatabase>

#include "ui/AmbrelStyle.h"

namespace ambrel::ui {
namespace {

QStringList systemFontFamilies() {
  const QString inter = QStringLiteral("Inter");
  const QString platform = QFontDatabase::systemFont(QFontDatabase::GeneralFont).family();
  const QString text = QFontDatabase::hasFamily(inter) ? inter : platform;
  return {text, QStringLiteral("Noto Color Emoji")};
}

QString css(const QColor& color) {
  return QStringLiteral("rgba(%1,%2,%3,%4)")
      .arg(color.red())
      .arg(color.green())
      .arg(color.blue())
      .arg(color.alpha());
}

QPalette toolkitPalette(const Palette& colors) {
  QPalette palette(colors.appBackgroundColor());
  palette.setColor(QPalette::Window, colors.appBackgroundColor());
  palette.setColor(QPalette::WindowText, colors.primaryTextColor());
  palette.setColor(QPalette::Base, colors.cardBackgroundColor());
  palette.setColor(QPalette::AlternateBase, colors.softPanelColor());
  palette.setColor(QPalette::Text, colors.primaryTextColor());
  palette.setColor(QPalette::PlaceholderText, Palette::tertiaryLabelColor());
  palette.setColor(QPalette::Button, colors.softPanelColor());
  palette.setColor(QPalette::ButtonText, colors.primaryTextColor());
  palette.setColor(QPalette::Highlight, colors.brandColor());
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::ToolTipBase, colors.softPanelColor());
  palette.setColor(QPalette::ToolTipText, colors.primaryTextColor());
  return palette;
}

}  // namespace

QFont systemFont(int pixelSize, QFont::Weight weight) {
  QFont font = QApplication::font();
  font.setPixelSize(pixelSize);
  font.setWeight(weight);
  return font;
}

void applyApplicationAppearance(QApplication& application) {
  const Palette palette;
  QApplication::setPalette(toolkitPalette(palette));
  const QString sheet = applicationStyleSheet(palette);
  // A style taken on again would be worked out anew for every widget.
  if (application.styleSheet() == sheet) return;
  QApplication::setStyle(new AmbrelStyle);
  QFont font;
  font.setFamilies(systemFontFamilies());
  font.setPixelSize(13);
  QApplication::setFont(font);
  application.setStyleSheet(sheet);
}

QString applicationStyleSheet(const Palette& palette) {
  const QString sheet = QStringLiteral(R"(
    QLineEdit { background: %field; color: %text; border: 1px solid %border; border-radius: 9px;
                padding: 0 9px; selection-background-color: %brand; selection-color: white; }
    QLineEdit:focus { border: 2px solid %brand; padding: 0 8px; }
    QLineEdit#searchField:focus { border: 1px solid %border; padding: 0 9px; }
    QLineEdit:disabled { background: %panel; color: %secondary; }
    QLineEdit#counterField, QLineEdit#counterField:focus { background: transparent; border: none; padding: 0;
                                                           color: %brand; }
    QLineEdit#counterField:disabled { color: %tertiary; }
    QFileDialog QLineEdit { min-height: 24px; }
    QLineEdit#cellEditor, QLineEdit#cellEditor:focus { border: 1px solid %brand; border-radius: 6px; padding: 0 3px; }
    QMenuBar { background: %background; color: %text; spacing: 2px; padding: 2px 8px; }
    QMenuBar::item { background: transparent; padding: 4px 9px; border-radius: 6px; }
    QMenuBar::item:selected { background: %brand; color: white; }
    QMenu { background: %card; color: %text; border: 1px solid %border; padding: 5px; }
    QMenu::item { padding: 5px 26px 5px 22px; border-radius: 5px; }
    QMenu::item:selected { background: %brand; color: white; }
    QMenu::item:disabled { color: %tertiary; background: transparent; }
    QMenu::separator { height: 1px; background: %border; margin: 5px 8px; }
    QMenu::indicator { left: 5px; width: 12px; height: 12px; }
    QMenu::indicator:checked { image: url(:/ambrel/symbols/check.svg); }
    QMenu::indicator:checked:selected { image: url(:/ambrel/symbols/check_white.svg); }
    QScrollBar:vertical { background: transparent; width: 12px; margin: 0; }
    QScrollBar:horizontal { background: transparent; height: 12px; margin: 0; }
    QScrollBar::handle { background: %scroll; border-radius: 4px; margin: 2px; }
    QScrollBar::handle:hover { background: %gray; }
    QScrollBar::handle:vertical { min-height: 32px; }
    QScrollBar::handle:horizontal { min-width: 32px; }
    QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
    QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }
    QToolTip { background: %panel; color: %text; border: 1px solid %border; padding: 1px 3px; }
    QTableView { background: %card; border: 1px solid %border; }
    QTableView:focus { border: 1px solid %brand; }
    QHeaderView { background: %panel; border: none; }
    QWidget#headerEnd { background: %panel; border: none; border-bottom: 1px solid %border; }
    QHeaderView::section { background: %panel; color: %secondary; border: none;
                           border-bottom: 1px solid %border; padding: 0 8px; font-weight: 600; }
    QCheckBox { color: %text; spacing: 7px; border: 1px solid transparent; border-radius: 6px;
                padding-left: 2px; }
    QCheckBox:focus { border-color: %brand; }
    QCheckBox::indicator { width: 15px; height: 15px; border: 1px solid %lightgray; border-radius: 4px;
                           background: %field; }
    QCheckBox::indicator:checked { background: %brand; border-color: %brand;
                                   image: url(:/ambrel/symbols/check_white.svg); }
    QDialog { background: %background; }
    QFileDialog QSplitter::handle { image: none; }
    QFileDialog QListView, QFileDialog QTreeView { padding: 3px; border-radius: 9px; }
    QFileDialog QListView::item, QFileDialog QTreeView::item { height: 24px; }
    QPushButton { background: %brand; color: white; border: none; border-radius: 10px;
                  padding: 7px 16px; font-weight: 600; min-width: 60px; }
    QPushButton#secondaryButton { background: %gray; }
    QPushButton:hover { background: %hover; }
    QPushButton:pressed { background: %pressed; }
    QPushButton:disabled { background: %disabled; color: %disabledtext; }
    QPushButton:focus { border: 2px solid %pressed; padding: 5px 14px; }
    QComboBox { background: %field; color: %text; border: 1px solid %border; border-radius: 9px;
                padding: 4px 9px; }
    QComboBox::drop-down { border: none; width: 20px; }
    QComboBox::down-arrow { image: url(:/ambrel/symbols/chevron_down.svg); width: 10px; height: 10px; }
    QToolButton { background: transparent; border: none; border-radius: 7px; padding: 4px; }
    QToolButton:hover { background: %border; }
    QListView, QTreeView { background: %card; color: %text; border: 1px solid %border;
                           selection-background-color: %brand; selection-color: white; }
  )");
  const std::pair<const char*, QColor> colors[] = {
      {"%field", palette.fieldBackgroundColor()},
      {"%background", palette.appBackgroundColor()},
      {"%border", palette.softBorderColor()},
      {"%brand", palette.brandColor()},
      {"%card", palette.cardBackgroundColor()},
      {"%disabledtext", Palette::white(0.35)},
      {"%disabled", Palette::white(0.7)},
      {"%gray", palette.grayColor()},
      {"%hover", blended(palette.brandColor(), 0.14, Qt::white)},
      {"%lightgray", Palette::systemLightGray()},
      {"%panel", palette.softPanelColor()},
      {"%pressed", blended(palette.brandColor(), 0.22, Qt::black)},
      {"%scroll", Palette::white(0.78)},
      {"%secondary", Palette::secondaryLabelColor()},
      {"%tertiary", Palette::tertiaryLabelColor()},
      {"%text", palette.primaryTextColor()},
  };
  QString filled = sheet;
  for (const auto& [name, color] : colors)
    filled.replace(QLatin1String(name), css(color));
  return filled;
}

void paintFocusRing(QPainter& painter, const QRectF& shape, double cornerRadius) {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(withOpacity(Qt::white, 0.9), 1.5));
  painter.drawRoundedRect(shape.adjusted(2.5, 2.5, -2.5, -2.5), cornerRadius - 2.5, cornerRadius - 2.5);
  painter.setPen(QPen(Palette().brandDarkColor(), 1.5));
  painter.drawRoundedRect(shape.adjusted(1, 1, -1, -1), cornerRadius - 1, cornerRadius - 1);
  painter.restore();
}

void styleTextFieldBox(QLineEdit* field) {
  field->setFont(systemFont(14, QFont::DemiBold));
  field->setAlignment(Qt::AlignCenter);
}

void styleCounterField(QLineEdit* field) {
  field->setObjectName(QStringLiteral("counterField"));
  field->setFont(systemFont(18, QFont::Bold));
  field->setAlignment(Qt::AlignCenter);
  field->setFrame(false);
}

QColor statusColor(StatusKind kind, const Palette& palette) {
  switch (kind) {
    case StatusKind::Watching:
      return palette.greenColor();
    case StatusKind::Error:
      return palette.redColor();
    case StatusKind::Good:
    case StatusKind::Busy:
    case StatusKind::Neutral:
      return palette.orangeColor();
  }
  return palette.orangeColor();
}

QColor backupColor(BackupColor color, const Palette& palette) {
  switch (color) {
    case BackupColor::Gray:
      return palette.grayColor();
    case BackupColor::Green:
      return palette.greenColor();
    case BackupColor::Orange:
      return palette.orangeColor();
    case BackupColor::Red:
      return palette.redColor();
    case BackupColor::Secondary:
      return Palette::secondaryLabelColor();
  }
  return Palette::secondaryLabelColor();
}

}  // namespace ambrel::ui
