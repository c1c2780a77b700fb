// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <climits>
#include <sys/stat.h>
#include <unistd.h>

#include "core/platform/WorkerProcesses.h"

namespace ambrel {
namespace {

// What the system appends to the path of an executable that is no longer there.
constexpr const char* kDeletedMark = " (deleted)";

bool isSameFile(const QByteArray& path, const QByteArray& other) {
  struct stat first = {};
  struct stat second = {};
  return ::stat(path.constData(), &first) == 0 && ::stat(other.constData(), &second) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

// File name of the executable that a process runs; empty when it cannot be read (a kernel thread, a process
// that has ended, another user's).
QByteArray executableName(const QByteArray& processFolder) {
  const QByteArray link = processFolder + "/exe";
  char target[PATH_MAX];
  const ssize_t length = ::readlink(link.constData(), target, sizeof target);
  if (length <= 0) return {};
  QByteArray path(target, length);
  // A file may really bear a name with that ending.
  if (path.endsWith(kDeletedMark) && !isSameFile(path, link))
    path.chop(static_cast<qsizetype>(qstrlen(kDeletedMark)));
  return path.mid(path.lastIndexOf('/') + 1);
}

bool isThisUsers(const QByteArray& processFolder) {
  struct stat status = {};
  return ::stat(processFolder.constData(), &status) == 0 && status.st_uid == ::geteuid();
}

}  // namespace

// The process name that the system keeps is cut at 15 characters; the executable's link is not.
std::vector<qint64> processesRunning(const QString& fileName) {
  const QByteArray wanted = QFile::encodeName(fileName);
  std::vector<qint64> found;
  if (wanted.isEmpty()) return found;  // the name of whatever cannot be read
  for (const QString& entry : QDir(QStringLiteral("/proc")).entryList(QDir::Dirs)) {
    bool isNumber = false;
    const qint64 id = entry.toLongLong(&isNumber);
    const QByteArray folder = "/proc/" + entry.toLatin1();
    if (isNumber && isThisUsers(folder) && executableName(folder) == wanted) found.push_back(id);
  }
  return found;
}

}  // namespace ambrel
