// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <QFileInfo>

#include "core/platform/MountTable.h"

namespace ambrel {

std::optional<MountedVolume> volumeOf(const QString& folder) {
  const QString withoutLinks = QFileInfo(folder).canonicalFilePath();
  QFile table(QStringLiteral("/proc/self/mountinfo"));
  if (withoutLinks.isEmpty() || !table.open(QIODevice::ReadOnly)) return std::nullopt;
  return volumeInMountTable(table.readAll(), withoutLinks);
}

}  // namespace ambrel
