// SPDX-License-Identifier: Apache-2.0
#include "core/backup/BackupCopy.h"

#include <QFile>
#include <cerrno>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace ambrel {
namespace {

using Kind = BackupOutcome::Kind;

BackupOutcome failed(const QString& message = {}) {
  return {Kind::Failed, message};
}

// 0, or why the status cannot be read. A NUL would silently cut the path short.
template <typename StatusCall>
int readStatus(StatusCall call, const QString& path, struct stat& status) {
  if (path.contains(QChar::Null)) return ENOENT;
  return call(QFile::encodeName(path).constData(), &status) == 0 ? 0 : errno;
}

bool isMissing(int error) {
  return error == ENOENT || error == ENOTDIR;
}

QString joined(const QString& folder, const QString& relative) {
  return folder.endsWith(QLatin1Char('/')) ? folder + relative : folder + QLatin1Char('/') + relative;
}

bool leadsUpwards(const QString& relative) {
  return relative.split(QLatin1Char('/')).contains(QLatin1String(".."));
}

// Errors show when the copy is to be written. The backup folder itself is never made: when its drive goes
// away at this moment, a folder in its place would take the copies from now on.
void makeFoldersOf(const QString& destination, const QString& backupDir) {
  for (qsizetype slash = destination.indexOf(QLatin1Char('/'), backupDir.size() + 1); slash >= 0;
       slash = destination.indexOf(QLatin1Char('/'), slash + 1)) {
    ::mkdir(QFile::encodeName(destination.left(slash)).constData(), 0777);
  }
}

// A file, a link or an empty folder; a folder with anything in it is not ours to remove.
void clearAway(Files& files, const QString& path) {
  if (!files.remove(path)) ::rmdir(QFile::encodeName(path).constData());
}

// Writes the copy under its temporary name, proves it, and gives it its own.
BackupOutcome replaceCopy(Files& files, const BackupJob& job, quint64 size, const QString& destination) {
  const QString temporary = destination + QLatin1String(BackupJob::kTemporarySuffix);
  makeFoldersOf(destination, job.backupDir);
  clearAway(files, temporary);
  if (const auto copied = files.copyToNew(job.source, temporary); !copied) return failed(copied.error());

  if (size == 0 || backupCopySize(temporary).value_or(0) != size) {
    (void)files.remove(temporary);
    return failed(QStringLiteral("incomplete copy (connection dropped)"));
  }
  // A file gives way to the move itself, so that at no time there is neither the old copy nor the new one.
  struct stat status = {};
  if (readStatus(::lstat, destination, status) == 0 && S_ISDIR(status.st_mode)) {
    clearAway(files, destination);
  }
  if (const auto moved = files.moveReplacing(temporary, destination); !moved) {
    (void)files.remove(temporary);
    return failed(moved.error());
  }
  return {Kind::Done};
}

}  // namespace

QString backupDestForSource(const QString& source, const QString& targetDir, const QString& backupDir) {
  const QString fileName = source.mid(source.lastIndexOf(QLatin1Char('/')) + 1);
  QString relative = fileName;
  if (!targetDir.isEmpty() && source.startsWith(targetDir)) {
    relative = source.mid(targetDir.size());
    while (relative.startsWith(QLatin1Char('/')))
      relative.remove(0, 1);
    // Such a path is not below the target folder.
    if (leadsUpwards(relative)) relative = fileName;
  }
  // Nothing leads out of the backup folder.
  return leadsUpwards(relative) ? QString() : joined(backupDir, relative);
}

std::optional<quint64> backupCopySize(const QString& path) {
  struct stat status = {};
  if (readStatus(::lstat, path, status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
  return static_cast<quint64>(status.st_size);
}

BackupOutcome copyToBackup(Files& files, const BackupJob& job) {
  struct stat source = {};
  const int unread = readStatus(::stat, job.source, source);
  // A disk that cannot answer has not lost the photo.
  if (unread != 0 && !isMissing(unread)) {
    return failed(QString::fromStdString(std::generic_category().message(unread)));
  }
  if (unread != 0 || !S_ISREG(source.st_mode)) return {Kind::SourceGone};

  struct stat folder = {};
  if (readStatus(::stat, job.backupDir, folder) != 0 || !job.driveIsThere()) return failed();

  const auto size = static_cast<quint64>(source.st_size);
  const QString destination = backupDestForSource(job.source, job.targetDir, job.backupDir);
  if (size != 0 && backupCopySize(destination) == size) {
    // An earlier run may have been killed between the two.
    (void)files.remove(destination + QLatin1String(BackupJob::kTemporarySuffix));
    return {Kind::Done};
  }
  return replaceCopy(files, job, size, destination);
}

}  // namespace ambrel
