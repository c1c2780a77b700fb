// SPDX-License-Identifier: Apache-2.0
#include "ui/Dialogs.h"

#include <QApplication>
#include <QFileInfo>

#include "ui/AlertDialog.h"
#include "ui/PathChooser.h"

namespace ambrel::ui {

Dialogs::~Dialogs() {
  delete _open;
}

void Dialogs::showAlert(const QString& title, const QString& message, std::function<void()> dismissed) {
  const QString shownTitle = title.isEmpty() ? QStringLiteral("Ambrel Photo Tether") : title;
  ask({shownTitle, message, {QStringLiteral("OK")}}, [dismissed = std::move(dismissed)](const Answer&) {
    if (dismissed) dismissed();
  });
}

void Dialogs::ask(const Question& question, std::function<void(const Answer&)> answered) {
  enqueue({[question](QWidget* parent) { return new AlertDialog(question, parent); },
           [answered = std::move(answered)](QDialog* dialog) {
             answered(static_cast<AlertDialog*>(dialog)->answer());
           }});
}

void Dialogs::choosePath(const PathRequest& request, std::function<void(const QString& path)> chosen) {
  enqueue({[request](QWidget* parent) { return new PathChooser(request, parent); },
           [this, request, chosen = std::move(chosen)](QDialog* dialog) {
             const QString path = static_cast<PathChooser*>(dialog)->chosenPath();
             if (request.kind == PathRequest::Kind::SaveFile && QFileInfo::exists(path)) {
               confirmReplacing(request, path, chosen);
             } else {
               chosen(path);
             }
           }});
}

// The toolkit would ask this in an event loop of its own.
void Dialogs::confirmReplacing(const PathRequest& request, const QString& path,
                               std::function<void(const QString& path)> chosen) {
  const QFileInfo file(path);
  const Question question{
      QStringLiteral("“%1” already exists. Do you want to replace it?").arg(file.fileName()),
      QStringLiteral("Replacing it overwrites its present contents."),
      {QStringLiteral("Replace"), QStringLiteral("Cancel")}};
  ask(question, [this, request, path, chosen = std::move(chosen)](const Answer& answer) {
    if (answer.button == 0) {
      chosen(path);
      return;
    }
    PathRequest again = request;
    again.startFolder = QFileInfo(path).path();
    again.proposedName = QFileInfo(path).fileName();
    choosePath(again, chosen);
  });
}

void Dialogs::beep() {
  QApplication::beep();
}

void Dialogs::enqueue(Request request) {
  _waiting.push_back(std::move(request));
  showNext();
}

void Dialogs::showNext() {
  if (_open || _waiting.empty()) return;
  Request request = std::move(_waiting.front());
  _waiting.pop_front();
  _open = request.make(_parentWindow);
  connect(_open, &QDialog::finished, this, [this, done = std::move(request.done)] {
    QDialog* finished = _open;
    _open = nullptr;
    finished->deleteLater();
    done(finished);
    showNext();
  });
  _open->open();
}

}  // namespace ambrel::ui
