// SPDX-License-Identifier: Apache-2.0
#include "core/platform/FileManager.h"

namespace ambrel {

std::vector<FileManagerCommand> openFolderCommands(const QString& folder) {
  return {{QStringLiteral("/usr/bin/open"), {folder}}};
}

std::vector<FileManagerCommand> revealCommands(const QString& file) {
  return {{QStringLiteral("/usr/bin/open"), {QStringLiteral("-R"), file}}};
}

}  // namespace ambrel
