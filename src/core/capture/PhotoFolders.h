// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "core/base/SerialThread.h"
#include "core/capture/FolderScan.h"
#include "core/list/NameList.h"

namespace ambrel {

// The highest photo number in the names "<prefix>_<number>.<any extension>" of a folder's entries, 0 for
// none. Numbers too large to go on from do not count.
qint64 maxNumberedIndex(const std::vector<std::string>& entries, std::string_view prefix);
// The same of the entries of a folder, 0 when it cannot be read.
qint64 maxNumberedIndexInFolder(const std::string& folder, std::string_view prefix);

// The folders of a person in a target folder, as absolute paths: the one of this very name first, if there is
// one, then those whose names go on with "_", in the order the file system gives them.
std::vector<std::string> foldersForRowName(const std::string& targetDir, std::string_view sanitisedName);

// Which folders of the target folder hold photos, and how many photos each person has: the disk is the truth
// about both. Paths are bytes, since names on disk need not be valid text.
//
// The target folder is read on the filing thread, between photos, so that counts and filed photos reach the
// main thread in the order in which they came to be on the disk, and no photo is counted twice.
class PhotoFolders : public QObject {
  Q_OBJECT
 public:
  using Done = std::function<void()>;

  // `thread` must outlive this object, or end before it.
  PhotoFolders(SerialThread& thread, NameList& list, std::function<QString()> targetDir);

  std::vector<std::string> foldersForRowName(std::string_view sanitisedName) const;
  // Of folders known to hold photos.
  qint64 folderCount() const { return static_cast<qint64>(_foldersWithImages.size()); }
  const std::unordered_set<std::string>& foldersWithImages() const { return _foldersWithImages; }

  // Looks at the disk anew; the folders known to hold photos and the captured counts follow, then `done` is
  // called. A list that is empty at the time of the request keeps its counts: one that is loaded meanwhile
  // brings its own.
  void rescanOutputFolders(const Done& done = {});
  // The captured counts alone.
  void syncCapturedCountsFromDisk(const Done& done = {});
  void noteFolderWithImage(const QString& photo);
  void forgetFolders();

 Q_SIGNALS:
  void pathLabelsStale();

 private:
  enum class Aim { CountsAlone, FoldersAndCounts };
  void look(Aim aim, const Done& done);
  std::string targetDir() const;
  void setFolders(const std::string& target, const PhotoCounts& counts);
  void setCapturedCounts(const PhotoCounts& counts);

  SerialThread& _thread;
  NameList& _list;
  std::function<QString()> _targetDir;
  std::shared_ptr<FolderScan> _scan;  // used by jobs alone
  std::unordered_set<std::string> _foldersWithImages;
};

}  // namespace ambrel
