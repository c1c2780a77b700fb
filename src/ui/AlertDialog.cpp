// SPDX-License-Identifier: Apache-2.0
#include "ui/AlertDialog.h"

#include <QApplication>
#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <algorithm>

#include "ui/Appearance.h"
#include "ui/TextBlock.h"
#include "ui/TextLabel.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

constexpr int kIconSize = 56;
constexpr int kMargin = 20;
constexpr int kTextWidth = 360;
constexpr int kSmallestButton = 84;
constexpr int kButtonHeight = 30;
constexpr int kFieldFontSize = 13;

TextBlock* makeText(const QString& text, const QFont& font, const QColor& color) {
  return new TextBlock(text, font, color, kTextWidth);
}

// The area's own height, or as much as its highest control takes: nothing is cut off.
int heightFor(const Accessory& accessory) {
  int height = accessory.size.height();
  const auto hold = [&height](const auto& controls) {
    for (const auto& control : controls)
      height = std::max(height, control.rect.y() + control.rect.height());
  };
  hold(accessory.labels);
  hold(accessory.textFields);
  hold(accessory.checkBoxes);
  return height;
}

}  // namespace

AlertDialog::AlertDialog(const Question& question, QWidget* parent)
    : QDialog(parent), _pressed(static_cast<int>(question.buttons.size()) - 1) {
  setWindowTitle(QStringLiteral("Ambrel Photo Tether"));
  setAttribute(Qt::WA_QuitOnClose, false);
  auto* ground = new Surface(this);
  ground->setFill(Palette().softPanelColor());

  auto* texts = new QVBoxLayout;
  texts->setSpacing(8);
  texts->addWidget(makeText(question.title, systemFont(15, QFont::Bold), Palette().primaryTextColor()));
  if (!question.message.isEmpty())
    texts->addWidget(makeText(question.message, systemFont(13), withOpacity(Qt::black, 0.65)));
  if (question.accessory) {
    texts->addSpacing(4);
    texts->addWidget(makeAccessory(*question.accessory, question.title));
  }
  texts->addStretch();

  auto* upper = new QHBoxLayout;
  upper->setSpacing(16);
  const QIcon icon = QApplication::windowIcon();
  if (!icon.isNull()) {
    auto* picture = new QLabel;
    picture->setPixmap(icon.pixmap(kIconSize, kIconSize));
    upper->addWidget(picture, 0, Qt::AlignTop);
  }
  upper->addLayout(texts);

  auto* all = new QVBoxLayout(ground);
  all->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
  all->setSpacing(18);
  all->addLayout(upper);
  all->addWidget(makeButtonRow(question.buttons));
  auto* frame = new QVBoxLayout(this);
  frame->setContentsMargins(0, 0, 0, 0);
  frame->setSizeConstraint(QLayout::SetFixedSize);
  frame->addWidget(ground);

  if (question.accessory && question.accessory->focusFirstField && !_textFields.empty()) {
    _textFields.front()->setFocus();
    _textFields.front()->selectAll();
  }
}

QWidget* AlertDialog::makeAccessory(const Accessory& accessory, const QString& title) {
  auto* area = new QWidget;
  const int height = heightFor(accessory);
  area->setFixedSize(accessory.size.width(), height);
  const auto place = [&](QWidget* widget, const QRect& rect) {
    widget->setGeometry(layout::fromBottom(height, rect.x(), rect.y(), rect.width(), rect.height()));
  };
  for (const Accessory::Label& label : accessory.labels) {
    const QFont font = label.heading ? systemFont(11, QFont::Bold) : systemFont(12);
    const QColor color = label.heading ? Palette::secondaryLabelColor() : Palette().primaryTextColor();
    place(new TextLabel(label.text, font, color, area), label.rect);
  }
  for (const Accessory::TextField& field : accessory.textFields) {
    auto* edit = new QLineEdit(field.text, area);
    edit->setFont(systemFont(kFieldFontSize));
    edit->setPlaceholderText(field.placeholder);
    edit->setCursorPosition(0);
    edit->setAccessibleName(field.placeholder.isEmpty() ? title : field.placeholder);
    place(edit, field.rect);
    _textFields.push_back(edit);
  }
  for (const Accessory::CheckBox& box : accessory.checkBoxes) {
    auto* check = new QCheckBox(box.title, area);
    check->setChecked(box.checked);
    place(check, box.rect);
    _checkBoxes.push_back(check);
  }
  return area;
}

QWidget* AlertDialog::makeButtonRow(const QStringList& titles) {
  auto* row = new QWidget;
  auto* line = new QHBoxLayout(row);
  line->setContentsMargins(0, 0, 0, 0);
  line->setSpacing(10);
  line->addStretch();
  for (int i = 0; i < titles.size(); ++i) {
    auto* button = new AmbrelButton(row);
    button->styleButton(titles[i], i == 0 ? Palette().brandColor() : Palette().grayColor(), true);
    button->setFixedSize(std::max(kSmallestButton, button->sizeHint().width()), kButtonHeight);
    connect(button, &AmbrelButton::clicked, this, [this, i] { press(i); });
    // Each further button stands to the left of the one before it.
    line->insertWidget(1, button);
    _buttons.push_back(button);
  }
  return row;
}

void AlertDialog::press(int button) {
  _pressed = button;
  accept();
}

Answer AlertDialog::answer() const {
  Answer answer{_pressed};
  for (const QLineEdit* field : _textFields)
    answer.texts.append(field->text());
  for (const QCheckBox* box : _checkBoxes)
    answer.checks.push_back(box->isChecked());
  return answer;
}

void AlertDialog::keyPressEvent(QKeyEvent* event) {
  const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
  auto* focused = qobject_cast<AmbrelButton*>(focusWidget());
  if (isReturn && focused && focused->hasFocus()) {
    focused->click();
  } else if (isReturn) {
    press(0);
  } else {
    QDialog::keyPressEvent(event);
  }
}

}  // namespace ambrel::ui
