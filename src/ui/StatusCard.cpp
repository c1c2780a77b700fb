// SPDX-License-Identifier: Apache-2.0
#include "ui/StatusCard.h"

#include "ui/Appearance.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

constexpr int kTitleSize = 10;

}  // namespace

StatusCard::StatusCard(const QString& title, int valueSize, QWidget* parent)
    : StatusCard(title, static_cast<QWidget*>(new TextLabel), parent) {
  _value = static_cast<TextLabel*>(_control);
  _value->styleStatusValue(Palette().greenColor());
  _value->setFont(systemFont(valueSize, QFont::Bold));
}

StatusCard::StatusCard(const QString& title, QWidget* valueControl, QWidget* parent)
    : Surface(parent),
      _title(new TextLabel(title, systemFont(kTitleSize, QFont::DemiBold), Palette::secondaryLabelColor(),
                           this)),
      _control(valueControl) {
  styleCardView();
  _title->setAlignment(Qt::AlignCenter);
  _control->setParent(this);
}

void StatusCard::setValue(const QString& text, const QColor& color) {
  _value->setText(text);
  _value->setAccessibleName(_title->text() + QStringLiteral(": ") + text);
  _value->setTextColor(color);
}

void StatusCard::resizeEvent(QResizeEvent*) {
  const layout::Card places = layout::card(size());
  _title->setGeometry(places.title);
  _control->setGeometry(places.value);
}

}  // namespace ambrel::ui
