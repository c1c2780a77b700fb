// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <sys/mount.h>
#include <sys/param.h>

#include "core/platform/MountTable.h"

namespace ambrel {

std::optional<MountedVolume> volumeOf(const QString& folder) {
  struct statfs status = {};
  if (::statfs(QFile::encodeName(folder).constData(), &status) != 0) return std::nullopt;
  return MountedVolume{QFile::decodeName(status.f_mntfromname), QString::fromUtf8(status.f_fstypename)};
}

}  // namespace ambrel
