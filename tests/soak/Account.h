// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "soak/Shutter.h"

namespace ambrel::soak {

// Where everything of a soak lies.
struct Places {
  explicit Places(const QString& root);

  QString root;
  QString home;  // data and preferences of the application, its temporary folder
  QString target;
  QString copies;
  QString exports;
};

// Files of the operator's that lie there before the day begins. Their names may change with the folders that
// they are in, their contents may not.
class EarlierFiles {
 public:
  // Below the folders of these persons, and in the backup folder.
  void plant(const Places& places, const QStringList& names);
  bool contains(const std::string& sha256) const {
    return _inTarget.count(sha256) + _inCopies.count(sha256) > 0;
  }
  const std::map<std::string, std::string>& inTarget() const { return _inTarget; }  // name by content
  const std::map<std::string, std::string>& inCopies() const { return _inCopies; }

 private:
  std::map<std::string, std::string> _inTarget;
  std::map<std::string, std::string> _inCopies;
};

// Looks at every byte that lies there after the day, and says what is wrong, one sentence each.
class Account {
 public:
  Account(const Places& places, const EarlierFiles& earlier, std::map<std::string, Shutter::Record> records);

  // Every photo exactly once, nothing of before lost or changed, nothing that nobody made.
  void checkPhotos(std::size_t filingsFailed);
  // `moved` are names of persons and folders whose photos were moved: what had not been copied by then waits
  // for the operator to ask for what is missing.
  void checkBackup(const std::set<std::string>& moved);
  // Once it was asked for: a copy of every photo below the target folder.
  void checkWholeBackup();
  // No temporary file, no file outside of the folders that are for it. A copy that failed when its photo was
  // `moved` may have left its beginning in the backup, if the drive failed to remove that as well.
  void checkPlaces(const std::set<std::string>& moved);

  struct Totals {
    std::size_t taken = 0;
    std::size_t reported = 0;
    std::size_t filed = 0;
    std::size_t atSource = 0;    // reported and left where they were downloaded
    std::size_t unreported = 0;  // there, though the worker died before it could say so
    std::size_t onCardOnly = 0;
    std::size_t lostInCamera = 0;  // with the memory of the camera, in times of trouble
    std::size_t backedUp = 0;
    std::size_t stuckCopies = 0;   // beginnings of copies of photos that moved
    std::size_t backupsAsked = 0;  // copies that only the operator's question brought
  };
  const Totals& totals() const { return _totals; }
  const QStringList& wrong() const { return _wrong; }

 private:
  struct File {
    std::string path;  // below its folder
    std::string sha256;
  };
  static std::vector<File> filesBelow(const QString& folder);
  static std::map<std::string, std::string> byPath(const std::vector<File>& files);
  void checkCopies(const std::vector<File>& copies);
  void complain(const std::string& sentence) { _wrong << QString::fromStdString(sentence); }

  const Places& _places;
  const EarlierFiles& _earlier;
  const std::map<std::string, Shutter::Record> _records;
  Totals _totals;
  QStringList _wrong;
};

}  // namespace ambrel::soak
