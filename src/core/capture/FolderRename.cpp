// SPDX-License-Identifier: Apache-2.0
#include "core/capture/FolderRename.h"

#include <QDir>
#include <QFileInfo>
#include <utility>

#include "core/base/FolderReader.h"
#include "core/base/PathText.h"
#include "core/base/Text.h"
#include "core/capture/FileNames.h"

namespace ambrel {
namespace {

constexpr QRect kNameField(0, 0, 320, 24);

QString folderNameOf(const QString& name) {
  return std_to_ns(sanitize_filename(ns_to_std(name)));
}

bool isSameName(const QString& a, const QString& b) {
  return a.compare(b, Qt::CaseInsensitive) == 0;
}

bool hasCells(const NameGrid& grid, qint64 row) {
  return grid.contains(row) && !grid.rows()[static_cast<std::size_t>(row)].empty();
}

// Copies that were being made under the folder's old name: whoever made them looks for them there, in vain.
// Those of numbered photos alone: a copy for the folder's new name, which may go on from the old one, is not
// in anybody's way.
void removeUnfinishedCopies(Files& files, const std::string& folder, const std::string& oldName,
                            const std::string& suffix) {
  if (suffix.empty()) return;
  const std::string prefix = oldName + '_';
  for (const std::string& name : entriesOf(folder)) {
    const bool numbered =
        name.starts_with(prefix) && name.find_first_of("0123456789", prefix.size()) == prefix.size();
    if (numbered && name.ends_with(suffix))
      static_cast<void>(files.remove(path_to_ns(folder) + QLatin1Char('/') + path_to_ns(name)));
  }
}

Question renameQuestion(const QString& folderName) {
  Accessory area{kNameField.size()};
  area.textFields.push_back({kNameField, folderName});
  return {QStringLiteral("Rename Photo Folder"),
          QStringLiteral("Rename \"%1\" and the images inside it to:").arg(folderName),
          {QStringLiteral("Rename"), QStringLiteral("Cancel")},
          area};
}

}  // namespace

FolderRename::FolderRename(Files& files, SerialThread& thread, PhotoFolders& folders, NameList& list,
                           const Tags& tags, Operator& operatorSeam, StatusLine& statusLine, RenameDesk desk)
    : _files(files),
      _thread(thread),
      _folders(folders),
      _list(list),
      _tags(tags),
      _operator(operatorSeam),
      _statusLine(statusLine),
      _desk(std::move(desk)) {}

// ---- The work on the disk

FolderRename::Pair FolderRename::pairOf(const QString& folder, const QString& newName) const {
  const QString target = _desk.targetDir();
  // A plain prefix, as the backup's own rule has it.
  const bool inTarget = !target.isEmpty() && folder.startsWith(target);
  return {ns_to_path(folder), newName,
          inTarget ? ns_to_path(_desk.backupDestForSource(folder)) : std::string()};
}

FolderRename::Work FolderRename::renamePairs(Files& files, const std::vector<Pair>& pairs,
                                             MissingFolders missing, const RenameWatch& watch) {
  std::vector<Pair> present;
  for (const Pair& pair : pairs) {
    if (missing == MissingFolders::Report || isFolder(pair.folder)) present.push_back(pair);
  }
  Work work;
  for (const Pair& pair : present) {
    if (watch.stop()) break;
    RenameOutcome outcome;
    if (const Result<std::string> name = checkedFolderName(pair.folder, pair.newName); name) {
      outcome = renameFolderFSAt(files, pair.folder, name.value(), watch);
      work.renamed.moved.push_back(std::move(outcome.moved));
      work.nothingTried = false;
      // Also after a rename that was refused; but never out of the backup folder.
      if (!pair.backupCopy.empty() && name.value() != "..")
        work.mirrored.push_back({pair.backupCopy, name.value()});
    } else {
      outcome.message = name.error();
    }
    work.outcome.photos += outcome.photos;
    if (work.outcome.message.isEmpty()) work.outcome.message = outcome.message;
  }
  return work;
}

void FolderRename::run(const std::vector<Pair>& pairs, MissingFolders missing, const Finished& finished) {
  Q_EMIT renameBegins();
  _thread.add([=, this, &files = _files, witness = _desk.pathWitness()](SerialThread::Line& mainThread) {
    RenameWatch watch{.stop = [&] { return mainThread.isAbandoned(); }};
    QStringList announced;
    if (witness) {
      watch.willTake = [&](const QStringList& paths) {
        announced += paths;
        witness(paths);
      };
    }
    Work work = renamePairs(files, pairs, missing, watch);
    work.renamed.announced = announced;
    mainThread.tell([=, this] {
      Q_EMIT photosMoved(work.renamed);
      mirror(work.mirrored);
      const auto report = [finished, outcome = work.outcome] { finished(outcome); };
      if (work.nothingTried) {
        report();
      } else {
        _folders.rescanOutputFolders(report);
      }
    });
  });
}

void FolderRename::mirror(const std::vector<Mirrored>& folders) {
  if (folders.empty()) {
    Q_EMIT backupFollowed();
    return;
  }
  _toMirror.push_back(folders);
  _desk.whenBackupRests([this] { startMirroring(); });
}

void FolderRename::startMirroring() {
  for (const std::vector<Mirrored>& folders : std::exchange(_toMirror, {})) {
    _mirrorThread.add([this, folders, suffix = _desk.unfinishedCopySuffix,
                       &files = _files](SerialThread::Line& mainThread) {
      const RenameWatch watch{.stop = [&] { return mainThread.isAbandoned(); }};
      for (const Mirrored& mirrored : folders) {
        if (watch.stop() || !pathExists(mirrored.folder)) continue;
        renameFolderFSAt(files, mirrored.folder, mirrored.newName, watch);
        removeUnfinishedCopies(files, renamedPath(mirrored.folder, mirrored.newName), nameOf(mirrored.folder),
                               suffix);
      }
      mainThread.tell([this] { Q_EMIT backupFollowed(); });
    });
  }
}

bool FolderRename::finishMirroring(std::chrono::milliseconds limit) {
  startMirroring();
  return _mirrorThread.finish(limit);
}

// ---- Any folder, from the menu

void FolderRename::renameFolderInteractive() {
  if (_desk.targetDir().isEmpty()) {
    _operator.showAlert(QStringLiteral("No Target Folder"), QStringLiteral("Choose a target folder first."));
    return;
  }
  const PathRequest request{
      .kind = PathRequest::Kind::OpenFolder,
      .message = QStringLiteral("Choose the photo folder that was filed under the wrong name."),
      .button = QStringLiteral("Choose"),
      .startFolder = _desk.targetDir()};
  _operator.choosePath(request, [this](const QString& chosen) {
    if (chosen.isEmpty()) return;
    const QString folder = QDir::cleanPath(chosen);
    _operator.ask(renameQuestion(QFileInfo(folder).fileName()), [this, folder](const Answer& answer) {
      if (answer.button == 0) applyFolderRename(folder, answer.texts.value(0));
    });
  });
}

void FolderRename::applyFolderRename(const QString& folder, const QString& newName) {
  run({pairOf(folder, newName)}, MissingFolders::Report, [this, newName](const RenameOutcome& outcome) {
    if (!outcome.message.isEmpty()) {
      _operator.showAlert(QStringLiteral("Rename Failed"), outcome.message);
      return;
    }
    _statusLine.setStatus(QStringLiteral("Renamed folder to \"%1\" (%2 photo%3 updated).")
                              .arg(folderNameOf(NSTrim(newName)), QString::number(outcome.photos),
                                   pluralEnding(outcome.photos)),
                          StatusKind::Good);
  });
}

// ---- The photos of a row

MoveDialog FolderRename::dialogFor(qint64 modelRow, const std::optional<QString>& fixedTargetName) const {
  MoveDialog dialog{_list.grid().text(modelRow, Cell::Name), fixedTargetName, {}};
  const QString folderName = folderNameOf(dialog.sourceName);
  QStringList tagSuffixes;
  for (const Tag& tag : _tags.suffixes())
    tagSuffixes.append(tag.suffix);
  QStringList folderNames;
  for (const std::string& path : _folders.foldersForRowName(ns_to_std(folderName)))
    folderNames.append(path_to_ns(nameOf(path)));

  const QString target = _desk.targetDir();
  for (const QString& suffix : candidateSuffixes(tagSuffixes, folderName, folderNames)) {
    const std::string folder = ns_to_path(target + QLatin1Char('/') + folderName + suffix);
    const bool exists = !target.isEmpty() && isFolder(folder);
    dialog.suffixes.push_back({suffix, exists, exists ? imageCountInFolder(folder) : 0});
  }
  return dialog;
}

void FolderRename::promptMoveFromRow(qint64 modelRow, const std::optional<QString>& fixedTargetName) {
  if (!hasCells(_list.grid(), modelRow)) return;
  const MoveDialog dialog = dialogFor(modelRow, fixedTargetName);
  _operator.ask(moveQuestion(dialog), [this, modelRow, dialog](const Answer& answer) {
    if (answer.button != 0) return;
    const QString typed = NSTrim(answer.texts.value(0));
    movePhotosFromRow(modelRow, dialog.fixedTargetName.value_or(typed), selectedSuffixes(dialog, answer));
  });
}

void FolderRename::movePhotosFromRow(qint64 modelRow, const QString& targetName,
                                     const QStringList& selectedSuffixes) {
  if (!hasCells(_list.grid(), modelRow)) return;
  const QString newName = NSTrim(targetName);
  const QString oldName = _list.grid().text(modelRow, Cell::Name);
  if (newName.isEmpty() || isSameName(newName, oldName)) return;

  const auto finished = [=, this](const RenameOutcome& outcome) {
    finishMove(modelRow, oldName, newName, outcome);
  };
  const QString target = _desk.targetDir();
  if (target.isEmpty()) {
    finished({});
    return;
  }
  const QString oldFolder = target + QLatin1Char('/') + folderNameOf(oldName);
  const QString newFolderName = folderNameOf(newName);
  std::vector<Pair> pairs = {pairOf(oldFolder, newFolderName)};
  for (const QString& suffix : selectedSuffixes)
    pairs.push_back(pairOf(oldFolder + suffix, newFolderName + suffix));
  run(pairs, MissingFolders::Skip, finished);
}

qint64 FolderRename::destinationRow(qint64 sourceRow, const QString& targetName) const {
  for (qint64 row = 0; row < _list.grid().rowCount(); ++row) {
    const bool another = row != sourceRow && hasCells(_list.grid(), row);
    if (another && isSameName(_list.grid().text(row, Cell::Name), targetName)) return row;
  }
  return -1;
}

void FolderRename::finishMove(qint64 sourceRow, const QString& sourceName, const QString& targetName,
                              const RenameOutcome& outcome) {
  // The list may have been edited while the photos moved.
  if (_list.grid().text(sourceRow, Cell::Name) != sourceName) sourceRow = destinationRow(-1, sourceName);
  qint64 row = destinationRow(sourceRow, targetName);
  const bool rowAdded = row < 0;
  if (rowAdded) {
    row = sourceRow < 0 ? _list.grid().rowCount() : sourceRow + 1;
    _list.editableGrid().insert(row, {ns_to_std(targetName), "", "0", ""});
  }
  _list.saveGridToDisk();
  // At once: a photo that arrives before the counts do belongs to the destination, and rows have moved.
  _list.selectAndShow(row);
  _folders.syncCapturedCountsFromDisk([this, outcome, targetName, rowAdded] {
    _list.selectAndShow(_list.selectedRow());
    Q_EMIT _list.pathLabelsStale();
    Q_EMIT _list.autoWatchStale();
    reportMove(outcome, targetName, rowAdded);
  });
}

void FolderRename::reportMove(const RenameOutcome& outcome, const QString& targetName, bool rowAdded) {
  if (!outcome.message.isEmpty()) {
    _operator.showAlert(QStringLiteral("Move Problem"), outcome.message);
    return;
  }
  _statusLine.setStatus(QStringLiteral("Moved %1 photo%2 to \"%3\"%4.")
                            .arg(QString::number(outcome.photos), pluralEnding(outcome.photos), targetName,
                                 rowAdded ? QStringLiteral(" (new row added)") : QString()),
                        StatusKind::Good);
}

}  // namespace ambrel
