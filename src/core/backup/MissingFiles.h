// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <functional>

namespace ambrel {

// The photos below the target folder, at any depth and hidden ones included, that have no copy of their size
// at the same place below the backup folder. Links to folders are not followed, and a backup folder that lies
// below the target folder is left out: copies are not copied. Folders that cannot be read count as empty.
// Blocks for as long as the drives do; never for the main thread.
QStringList missingFromBackup(const QString& targetDir, const QString& backupDir,
                              const std::function<bool(const QString& name)>& isImageFileName);

}  // namespace ambrel
