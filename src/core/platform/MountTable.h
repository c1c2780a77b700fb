// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

namespace ambrel {

// A volume as the system has it mounted.
struct MountedVolume {
  QString source;      // a device, or "//user@server/share" for a network share
  QString fileSystem;  // the system's name for its type, such as "ext4", "cifs", "smbfs"
  bool operator==(const MountedVolume&) const = default;
};

// The volume that holds a folder; none where the system does not tell.
std::optional<MountedVolume> volumeOf(const QString& folder);

// As volumeOf for a folder without links, from a mount table in the form of /proc/self/mountinfo. The sources
// of network file systems are brought into the form "//server/share".
std::optional<MountedVolume> volumeInMountTable(const QByteArray& table, const QString& folder);

}  // namespace ambrel
