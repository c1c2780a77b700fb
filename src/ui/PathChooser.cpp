// SPDX-License-Identifier: Apache-2.0
#include "ui/PathChooser.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QPushButton>
#include <QSplitter>
#include <QStyle>

namespace ambrel::ui {
namespace {

constexpr int kPlacesWidth = 150;
constexpr QSize kChooserSize{780, 500};

QString defaultTitle(PathRequest::Kind kind) {
  switch (kind) {
    case PathRequest::Kind::OpenFile:
      return QStringLiteral("Open");
    case PathRequest::Kind::OpenFolder:
      return QStringLiteral("Choose a Folder");
    case PathRequest::Kind::SaveFile:
      return QStringLiteral("Save");
  }
  return {};
}

}  // namespace

PathChooser::PathChooser(const PathRequest& request, QWidget* parent)
    : QFileDialog(parent, request.message.isEmpty() ? defaultTitle(request.kind) : request.message,
                  request.startFolder.isEmpty() ? QDir::homePath() : request.startFolder),
      _kind(request.kind) {
  setAttribute(Qt::WA_QuitOnClose, false);
  // The toolkit's own chooser opens without an event loop of its own; it must not ask about replacing either,
  // since that question would run one.
  setOption(QFileDialog::DontUseNativeDialog);
  setOption(QFileDialog::DontConfirmOverwrite);
  switch (request.kind) {
    case PathRequest::Kind::OpenFile:
      setFileMode(QFileDialog::ExistingFile);
      break;
    case PathRequest::Kind::OpenFolder:
      setFileMode(QFileDialog::Directory);
      setOption(QFileDialog::ShowDirsOnly);
      break;
    case PathRequest::Kind::SaveFile:
      setAcceptMode(QFileDialog::AcceptSave);
      setFileMode(QFileDialog::AnyFile);
      if (!request.extensions.isEmpty()) setDefaultSuffix(request.extensions.front());
      selectFile(request.proposedName);
      break;
  }
  if (request.kind != PathRequest::Kind::OpenFolder) setNameFilter(nameFilter(request.extensions));
  resize(kChooserSize);
  // The places beside the list are cut off at the toolkit's own width.
  if (auto* splitter = findChild<QSplitter*>()) splitter->setSizes({kPlacesWidth, width() - kPlacesWidth});
  styleCancelButton();
  if (!request.button.isEmpty()) setLabelText(QFileDialog::Accept, request.button);
}

void PathChooser::styleCancelButton() {
  auto* buttons = findChild<QDialogButtonBox*>();
  QPushButton* cancel = buttons ? buttons->button(QDialogButtonBox::Cancel) : nullptr;
  if (!cancel) return;
  cancel->setObjectName(QStringLiteral("secondaryButton"));
  // The style has looked at the name already.
  style()->unpolish(cancel);
  style()->polish(cancel);
}

QString PathChooser::chosenPath() const {
  if (result() != QDialog::Accepted) return {};
  const QStringList files = selectedFiles();
  return files.isEmpty() ? QString() : files.front();
}

void PathChooser::accept() {
  // For a name that does not exist the toolkit would show a message in an event loop of its own.
  const QStringList files = selectedFiles();
  const bool missing =
      _kind != PathRequest::Kind::SaveFile && !files.isEmpty() && !QFileInfo::exists(files.front());
  if (missing) {
    QApplication::beep();
    return;
  }
  QFileDialog::accept();
}

QString nameFilter(const QStringList& extensions) {
  if (extensions.isEmpty()) return QStringLiteral("All files (*)");
  QStringList patterns;
  for (const QString& extension : extensions)
    patterns << QStringLiteral("*.") + extension << QStringLiteral("*.") + extension.toUpper();
  return QStringLiteral("%1 files (%2)").arg(extensions.front().toUpper(), patterns.join(QLatin1Char(' ')));
}

}  // namespace ambrel::ui
