// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <vector>

namespace ambrel {

struct FileManagerCommand {
  QString program;
  QStringList arguments;
  bool operator==(const FileManagerCommand&) const = default;
};

// What makes this desktop show a folder, or a file selected in its folder. The commands are tried in turn
// until one succeeds.
std::vector<FileManagerCommand> openFolderCommands(const QString& folder);
std::vector<FileManagerCommand> revealCommands(const QString& file);

// The desktop's file manager. Calls return at once; a desktop without one shows nothing.
class FileManager : public QObject {
  Q_OBJECT
 public:
  using QObject::QObject;

  void openFolder(const QString& folder) { tryInTurn(openFolderCommands(folder)); }
  void reveal(const QString& file) { tryInTurn(revealCommands(file)); }

 private:
  void tryInTurn(std::vector<FileManagerCommand> commands);
};

}  // namespace ambrel
