// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDialog>
#include <QPointer>
#include <deque>

#include "core/base/Operator.h"

namespace ambrel::ui {

// The Operator at the screen. Dialogs block the window that they belong to but nothing else: no call waits
// for an answer. What is asked while a dialog is open waits in line, so that dialogs never lie over each
// other.
class Dialogs : public QObject, public Operator {
  Q_OBJECT
 public:
  Dialogs() = default;
  ~Dialogs() override;

  // The window that dialogs belong to; without one they stand alone.
  void setParentWindow(QWidget* window) { _parentWindow = window; }
  // The dialog on the screen, or none.
  QDialog* openDialog() const { return _open; }

  void showAlert(const QString& title, const QString& message, std::function<void()> dismissed) override;
  void ask(const Question& question, std::function<void(const Answer&)> answered) override;
  void choosePath(const PathRequest& request, std::function<void(const QString& path)> chosen) override;
  void beep() override;

 private:
  struct Request {
    std::function<QDialog*(QWidget* parent)> make;
    std::function<void(QDialog* finished)> done;
  };
  void enqueue(Request request);
  void showNext();
  void confirmReplacing(const PathRequest& request, const QString& path,
                        std::function<void(const QString& path)> chosen);

  QPointer<QWidget> _parentWindow;
  QPointer<QDialog> _open;
  std::deque<Request> _waiting;
};

}  // namespace ambrel::ui
