// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QCheckBox>
#include <QDialog>
#include <QLineEdit>
#include <vector>

#include "core/base/Operator.h"
#include "ui/AmbrelButton.h"

namespace ambrel::ui {

// A question in the style of the window: icon, title, message, the accessory's controls and the buttons, the
// first (default) one rightmost. Return takes the first button, Escape and closing the last.
class AlertDialog : public QDialog {
  Q_OBJECT
 public:
  AlertDialog(const Question& question, QWidget* parent);

  // What was answered; valid once finished() was sent.
  Answer answer() const;
  const std::vector<AmbrelButton*>& buttons() const { return _buttons; }
  const std::vector<QLineEdit*>& textFields() const { return _textFields; }

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QWidget* makeAccessory(const Accessory& accessory, const QString& title);
  QWidget* makeButtonRow(const QStringList& titles);
  void press(int button);

  int _pressed;
  std::vector<AmbrelButton*> _buttons;
  std::vector<QLineEdit*> _textFields;
  std::vector<QCheckBox*> _checkBoxes;
};

}  // namespace ambrel::ui
