// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>
#include <functional>
#include <ostream>
#include <set>

#include "core/base/Result.h"
#include "integration/capture/PlainDisk.h"
#include "integration/list/PlainList.h"
#include "support/ScriptedOperator.h"

namespace ambrel {

// What is to become of photos on disk, and of the list beside them: every rule as it is told, one step after
// the other, nothing remembered but the folders known to hold photos.
class PlainPhotos {
 public:
  using Names = PlainDisk::Names;
  // Where the words are the system's, none are expected.
  static constexpr const char* kSystemsWords = "";
  // A file or folder with this in its name cannot be moved, except in the backup.
  static constexpr const char* kImmovable = "locked";

  struct Filed {
    std::string path;
    qint64 row = -1;
    bool operator==(const Filed&) const = default;
    friend std::ostream& operator<<(std::ostream& out, const Filed& one) {
      return out << one.path << " for row " << one.row;
    }
  };
  struct Renamed {
    qint64 photos = 0;
    std::optional<QString> message = {};
  };
  struct SuffixBox {
    QString suffix;
    QString title;
    bool checked = false;
  };
  // Photos that arrive while others are moved: before the folders are looked at anew, and before the counts
  // of the move's rows are.
  struct Arrivals {
    std::function<void()> early = [] {};
    std::function<void()> late = [] {};
  };

  explicit PlainPhotos(PlainList& people) : list(people) {}

  // The file a photo is to be copied to, or the folder that mirrors one; none where there is no such place.
  std::optional<std::string> backupOf(const std::string& path) const;

  void file(const std::string& download);
  void rescan();
  // `listing` are the names in the target folder as the file system lists them.
  std::vector<SuffixBox> suffixBoxes(qint64 row, const Names& listing) const;
  void move(qint64 row, const QString& typed, const QStringList& suffixes, const Arrivals& arrivals);
  void renameFolder(const std::string& folder, const QString& typed);

  PlainList& list;
  PlainDisk disk;
  std::string target;  // none when empty
  std::string backup;
  bool backupOn = false;
  QStringList tagSuffixes;
  std::string enabledSuffix;
  qint64 counterField = 1;
  bool storageIsLow = false;
  // What another program puts under the number that the next photo is to get.
  std::string rival;
  // The file system lists a folder in an order of its own. Asked for once for each folder whose photos get
  // new names.
  std::function<Names(const std::string& folder)> listingOf;

  std::set<std::string> foldersWithImages;
  std::vector<Filed> filed;
  std::vector<QString> failures;
  std::vector<ScriptedOperator::Alert> alerts;
  QString status;

 private:
  struct Pair {
    std::string folder;
    QString newName;
  };

  qint64 photosIn(const std::string& folder) const;
  qint64 highestNumber(const std::string& folder, const std::string& prefix) const;
  void syncCounts();
  Names photosToRename(const std::string& folder, const std::function<bool(const std::string&)>& isRenamed);
  bool moveIfMovable(const std::string& from, const std::string& to);
  Renamed merge(const std::string& folder, const std::string& destination);
  Renamed rename(const std::string& folder, const std::string& destination);
  Renamed renameOnDisk(const std::string& folder, const std::string& newName);
  Result<std::string> newNameOf(const Pair& pair) const;
  Renamed renamePairs(const std::vector<Pair>& pairs, bool& tried);
  std::vector<Pair> pairsOfMove(const std::string& folderName, const std::string& newFolderName,
                                const QStringList& suffixes) const;
  qint64 destinationRow(qint64 source, const QString& name) const;
  bool enterDestination(qint64 source, const QString& name);
  std::string nameToFileUnder() const;
  qint64 takeNumber(const std::function<std::string(qint64)>& pathOf);
  void take(const std::string& download, const std::string& folderName);
};

// The file-system-safe form of a name.
std::string safeName(const std::string& name);
bool isPhotoName(const std::string& name);

}  // namespace ambrel
