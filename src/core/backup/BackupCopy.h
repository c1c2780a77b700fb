// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "core/backup/CopiesAhead.h"
#include "core/base/Files.h"

namespace ambrel {

// Where the backup copy of a photo belongs: the folders below the target folder are mirrored below the backup
// folder; a photo from elsewhere goes to its top level. "Below" means that the path begins with the target
// folder's, character by character: with the target folder /Shots, /Shots2/a.jpg becomes 2/a.jpg. Empty for a
// folder named "..", which has no place in the backup folder.
QString backupDestForSource(const QString& source, const QString& targetDir, const QString& backupDir);

// Bytes of a regular file that is no link; none where there is no such file or its size cannot be read.
std::optional<quint64> backupCopySize(const QString& path);

// One photo to copy, with everything as it stood when the job began.
struct BackupJob {
  QString source;
  QString targetDir;
  QString backupDir;
  // Whether the drive that the backup folder lies on is there; asked only once the folder itself is.
  std::function<bool()> driveIsThere = [] { return true; };
  // Sources of the jobs that are to follow, in their order.
  QStringList next = {};
};

struct BackupOutcome {
  enum class Kind { Done, Failed, SourceGone };
  Kind kind = Kind::Failed;
  QString message = {};  // why it failed; may be empty
  // Whether the names of this copy and of all before it are on the disk too. Where they wait, a later outcome
  // tells, or windUp; where they are in doubt, all since the last OnDisk have to be done again.
  enum class Names { OnDisk, Waiting, InDoubt };
  Names names = Names::OnDisk;
  bool copiesAhead = false;  // are there for jobs to follow
  bool operator==(const BackupOutcome&) const = default;
};

// Done means that the copy stands complete under its name, its bytes on the disk, or that a file of the same
// size was there before. A failed copy leaves nothing behind that it can still remove. Blocks for as long as
// the drive does; never for the main thread.
BackupOutcome copyToBackup(Files& files, CopiesAhead& ahead, const BackupJob& job);
// For when the jobs to follow do not: removes their copies, and brings the names of those made to the disk.
// Where that fails, they are in doubt.
Result<void> windUp(CopiesAhead& ahead);

}  // namespace ambrel
