// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/base/Files.h"
#include "core/base/Operator.h"
#include "core/base/SerialThread.h"
#include "core/base/StatusLine.h"
#include "core/capture/FolderMoves.h"
#include "core/capture/MoveDialog.h"
#include "core/capture/PhotoFolders.h"
#include "core/capture/Tags.h"
#include "core/list/NameList.h"

namespace ambrel {

// What a rename of folders asks of the rest of the application, on the main thread.
struct RenameDesk {
  std::function<QString()> targetDir;
  // The backup's copy of a folder in the target folder; empty while backup is off.
  std::function<QString(const QString& folder)> backupDestForSource;
  // What to tell, on any thread, of the paths that photos may come to have before they do. May be none.
  std::function<std::function<void(const QStringList& paths)>()> pathWitness = [] { return nullptr; };
  // Calls back once no copy is being made in the backup, or when that takes too long.
  std::function<void(std::function<void()> act)> whenBackupRests = [](const std::function<void()>& act) {
    act();
  };
  // Ends the name of a copy in the backup that is still being made; empty: nothing is known of such copies.
  std::string unfinishedCopySuffix = {};
};

// What one rename of the application's own made of the paths in the target folder.
struct Renamed {
  std::vector<MovedFiles> moved;  // in this order
  QStringList announced;          // what pathWitness was told
};

// Sets photos right that were filed under the wrong name: moves those of a person to another name, or renames
// any folder together with its photos. The same is done in the backup.
//
// The files are moved on the filing thread, between photos, and in the backup on a thread of its own, since a
// drive that hangs there must not hold up filing. `files` has to last until the process ends.
class FolderRename : public QObject {
  Q_OBJECT
 public:
  FolderRename(Files& files, SerialThread& thread, PhotoFolders& folders, NameList& list, const Tags& tags,
               Operator& operatorSeam, StatusLine& statusLine, RenameDesk desk);

  // The menu's way: the operator picks a folder, anywhere, and types its new name.
  void renameFolderInteractive();
  // The list's ways: from the row's menu, and by dropping the row onto the one that is the target.
  void ctxRenameFolderAndImages(qint64 modelRow) { promptMoveFromRow(modelRow, std::nullopt); }
  void promptMoveFromRow(qint64 modelRow, const std::optional<QString>& fixedTargetName);

  // Without a question. Both report on the status line, or with an alert, when they are done.
  void applyFolderRename(const QString& folder, const QString& newName);
  void movePhotosFromRow(qint64 modelRow, const QString& targetName, const QStringList& selectedSuffixes);

  // Waits until the backup follows what was renamed, for at most `limit`; whether nothing was left.
  bool finishMirroring(std::chrono::milliseconds limit);

 Q_SIGNALS:
  // Each rename: it is about to begin; the photos have their new paths; the backup has followed.
  void renameBegins();
  void photosMoved(const Renamed& renamed);
  void backupFollowed();

 private:
  // A folder, the name it is to get, and the backup's copy of it, if any.
  struct Pair {
    std::string folder;
    QString newName;
    std::string backupCopy;
  };
  struct Mirrored {
    std::string folder;
    std::string newName;
  };
  struct Work {
    RenameOutcome outcome;  // photos of all pairs, and the first message
    std::vector<Mirrored> mirrored;
    Renamed renamed;
    bool nothingTried = true;
  };
  enum class MissingFolders { Skip, Report };
  using Finished = std::function<void(const RenameOutcome&)>;

  static Work renamePairs(Files& files, const std::vector<Pair>& pairs, MissingFolders missing,
                          const RenameWatch& watch);
  Pair pairOf(const QString& folder, const QString& newName) const;
  void run(const std::vector<Pair>& pairs, MissingFolders missing, const Finished& finished);
  void mirror(const std::vector<Mirrored>& folders);
  void startMirroring();
  MoveDialog dialogFor(qint64 modelRow, const std::optional<QString>& fixedTargetName) const;
  qint64 destinationRow(qint64 sourceRow, const QString& targetName) const;
  void finishMove(qint64 sourceRow, const QString& sourceName, const QString& targetName,
                  const RenameOutcome& outcome);
  void reportMove(const RenameOutcome& outcome, const QString& targetName, bool rowAdded);

  Files& _files;
  SerialThread& _thread;
  PhotoFolders& _folders;
  NameList& _list;
  const Tags& _tags;
  Operator& _operator;
  StatusLine& _statusLine;
  RenameDesk _desk;
  std::vector<std::vector<Mirrored>> _toMirror;  // one of each rename, until the backup rests
  SerialThread _mirrorThread;
};

}  // namespace ambrel
