// SPDX-License-Identifier: Apache-2.0
#include "ui/PathChooser.h"

#include <QAbstractFileIconProvider>
#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QListView>
#include <QPushButton>
#include <QSplitter>
#include <QStyle>
#include <QTreeView>
#include <array>

#include "ui/Palette.h"
#include "ui/Symbols.h"

namespace ambrel::ui {
namespace {

constexpr int kPlacesWidth = 150;
constexpr QSize kChooserSize{780, 500};
// Of size, type and date; the name has the rest.
constexpr std::array<int, 3> kColumnWidths{80, 100, 160};

class Signs : public QAbstractFileIconProvider {
 public:
  QIcon icon(IconType type) const override {
    switch (type) {
      case Computer:
      case Desktop:
        return symbolIcon(Symbol::Computer, Palette().grayColor());
      case Drive:
      case Network:
        return symbolIcon(Symbol::Drive, Palette().grayColor());
      case File:
        return symbolIcon(Symbol::File, Palette().grayColor());
      default:
        return symbolIcon(Symbol::Folder, Palette().brandColor());
    }
  }
  QIcon icon(const QFileInfo& info) const override {
    if (info.isRoot()) return icon(Drive);
    return icon(info.isDir() ? Folder : File);
  }
};

// The chooser's thread that reads folders asks for signs until the toolkit has destroyed it.
QAbstractFileIconProvider* signs() {
  static Signs all;
  return &all;
}

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
  setSizeGripEnabled(false);
  setIconProvider(signs());
  styleLists();
  styleCancelButton();
  if (!request.button.isEmpty()) setLabelText(QFileDialog::Accept, request.button);
}

void PathChooser::styleLists() {
  // The places beside the list are cut off at the toolkit's own width.
  if (auto* splitter = findChild<QSplitter*>()) splitter->setSizes({kPlacesWidth, width() - kPlacesWidth});
  if (auto* places = findChild<QListView*>(QStringLiteral("sidebar"))) {
    places->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    places->setTextElideMode(Qt::ElideMiddle);
  }
  auto* files = findChild<QTreeView*>(QStringLiteral("treeView"));
  if (!files) return;
  QHeaderView* header = files->header();
  header->setSectionResizeMode(0, QHeaderView::Stretch);
  for (std::size_t i = 0; i < kColumnWidths.size(); ++i)
    header->resizeSection(static_cast<int>(i) + 1, kColumnWidths[i]);
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
