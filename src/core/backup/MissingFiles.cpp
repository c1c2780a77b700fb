// SPDX-License-Identifier: Apache-2.0
#include "core/backup/MissingFiles.h"

#include <QFile>
#include <algorithm>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "core/backup/BackupCopy.h"
#include "core/base/FolderReader.h"

namespace ambrel {
namespace {

QByteArray withoutEndingSlash(const QString& folder) {
  QByteArray path = QFile::encodeName(folder);
  while (path.endsWith('/'))
    path.chop(1);
  return path;
}

class Walk {
 public:
  Walk(const QString& targetDir, const QString& backupDir,
       const std::function<bool(const QString& name)>& isImageFileName)
      : _target(withoutEndingSlash(targetDir)),
        _backup(withoutEndingSlash(backupDir)),
        _isImage(isImageFileName),
        _backupKnown(::stat((_backup + '/').constData(), &_backupStatus) == 0) {}

  QStringList missing() {
    std::vector<QByteArray> folders = {""};  // relative, still to be read
    while (!folders.empty()) {
      const QByteArray folder = std::move(folders.back());
      folders.pop_back();
      readFolder(folder, folders);
    }
    return _missing;
  }

 private:
  void readFolder(const QByteArray& folder, std::vector<QByteArray>& folders) {
    std::vector<std::string> names = entriesOf((_target + folder + '/').toStdString());
    std::sort(names.begin(), names.end());
    for (const std::string& name : names)
      visit(folder + '/' + name.c_str(), folders);
  }

  void visit(const QByteArray& relative, std::vector<QByteArray>& folders) {
    const QByteArray path = _target + relative;
    struct stat status = {};
    if (::lstat(path.constData(), &status) != 0) return;
    if (S_ISDIR(status.st_mode)) {
      if (!isBackupFolder(status)) folders.push_back(relative);
      return;
    }
    const QString source = QFile::decodeName(path);
    if (!_isImage(source) || ::stat(path.constData(), &status) != 0 || !S_ISREG(status.st_mode)) return;
    const auto copied = backupCopySize(QFile::decodeName(_backup + relative));
    if (status.st_size == 0 || copied != static_cast<quint64>(status.st_size)) _missing.append(source);
  }

  bool isBackupFolder(const struct stat& status) const {
    return _backupKnown && status.st_dev == _backupStatus.st_dev && status.st_ino == _backupStatus.st_ino;
  }

  const QByteArray _target;
  const QByteArray _backup;
  const std::function<bool(const QString& name)>& _isImage;
  struct stat _backupStatus = {};
  const bool _backupKnown;
  QStringList _missing;
};

}  // namespace

QStringList missingFromBackup(const QString& targetDir, const QString& backupDir,
                              const std::function<bool(const QString& name)>& isImageFileName) {
  return Walk(targetDir, backupDir, isImageFileName).missing();
}

}  // namespace ambrel
