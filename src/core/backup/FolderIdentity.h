// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace ambrel {

// How two folders lie to each other on the disk, whatever their paths look like.
enum class FolderRelation { Apart, Same, Inside, Around };

// How `folder` lies to `other`: the same folder, inside it, or around it, at any depth. Compares what the
// system knows each folder and each of its parents by, so links and spelling make no difference. A folder
// that cannot be read is Apart from every other.
FolderRelation relationOf(const QString& folder, const QString& other);

}  // namespace ambrel
