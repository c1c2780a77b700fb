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
using Names = BackupOutcome::Names;

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

CopyPlace placeOf(const QString& source, const BackupJob& job) {
  return {source, backupDestForSource(source, job.targetDir, job.backupDir), job.backupDir};
}

std::vector<CopyPlace> placesOfNext(const BackupJob& job) {
  std::vector<CopyPlace> places;
  for (const QString& source : job.next)
    places.push_back(placeOf(source, job));
  return places;
}

// Writes the copy under its temporary name, proves it, and gives it its own.
BackupOutcome replaceCopy(Files& files, CopiesAhead& ahead, const CopyPlace& place, const struct stat& source,
                          const std::vector<CopyPlace>& next) {
  const QString temporary = place.temporary();
  if (const auto copied = ahead.copy(place, source, next); !copied) return failed(copied.error());

  const auto size = static_cast<quint64>(source.st_size);
  if (size == 0 || backupCopySize(temporary).value_or(0) != size) {
    (void)files.remove(temporary);
    return failed(QStringLiteral("incomplete copy (connection dropped)"));
  }
  // A file gives way to the move itself, so that at no time there is neither the old copy nor the new one.
  struct stat status = {};
  if (readStatus(::lstat, place.destination, status) == 0 && S_ISDIR(status.st_mode)) {
    ::rmdir(QFile::encodeName(place.destination).constData());  // unless there is something in it
  }
  if (const auto moved = files.moveReplacing(temporary, place.destination); !moved) {
    (void)files.remove(temporary);
    return failed(moved.error());
  }
  ahead.hasName(place.destination);
  return {Kind::Done};
}

BackupOutcome copyOne(Files& files, CopiesAhead& ahead, const BackupJob& job) {
  struct stat source = {};
  const int unread = readStatus(::stat, job.source, source);
  // A disk that cannot answer has not lost the photo.
  if (unread != 0 && !isMissing(unread)) {
    return failed(QString::fromStdString(std::generic_category().message(unread)));
  }
  if (unread != 0 || !S_ISREG(source.st_mode)) return {Kind::SourceGone};

  struct stat folder = {};
  if (readStatus(::stat, job.backupDir, folder) != 0 || !job.driveIsThere()) return failed();

  const CopyPlace place = placeOf(job.source, job);
  const std::vector<CopyPlace> next = placesOfNext(job);
  if (source.st_size != 0 && backupCopySize(place.destination) == static_cast<quint64>(source.st_size)) {
    // An earlier run may have been killed between the two.
    (void)files.remove(place.temporary());
    // And before its name was on the disk.
    ahead.hasName(place.destination);
    return {Kind::Done};
  }
  return replaceCopy(files, ahead, place, source, next);
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

BackupOutcome copyToBackup(Files& files, CopiesAhead& ahead, const BackupJob& job) {
  std::vector<CopyPlace> wanted = placesOfNext(job);
  wanted.push_back(placeOf(job.source, job));
  ahead.keepOnly(wanted);
  BackupOutcome outcome = copyOne(files, ahead, job);
  // Those behind wait until this one goes through.
  if (outcome.kind == Kind::Failed) ahead.keepOnly({});
  Result<void> flushed;
  if (ahead.isFlushDue()) flushed = ahead.flushFolders();
  if (!flushed && outcome.kind != Kind::Failed) {
    ahead.keepOnly({});
    outcome = failed(flushed.error());
  }
  outcome.names = !flushed ? Names::InDoubt : ahead.isSettled() ? Names::OnDisk : Names::Waiting;
  outcome.copiesAhead = !ahead.isEmpty();
  return outcome;
}

Result<void> windUp(CopiesAhead& ahead) {
  ahead.keepOnly({});
  return ahead.flushFolders();
}

}  // namespace ambrel
