// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/Surface.h"
#include "ui/TextLabel.h"

namespace ambrel::ui {

// A small card with a title and a value.
class StatusCard : public Surface {
  Q_OBJECT
 public:
  // With a text value in the bold font of `valueSize` points.
  StatusCard(const QString& title, int valueSize, QWidget* parent);
  // With a control of the caller's in the value's place; the card takes it over.
  StatusCard(const QString& title, QWidget* valueControl, QWidget* parent);

  void setValue(const QString& text, const QColor& color);
  void setValueToolTip(const QString& text) { _value->setToolTip(text); }
  QString valueText() const { return _value->text(); }
  QColor valueColor() const { return _value->textColor(); }

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  TextLabel* _title;
  TextLabel* _value = nullptr;
  QWidget* _control;
};

}  // namespace ambrel::ui
