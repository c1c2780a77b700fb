// SPDX-License-Identifier: Apache-2.0
#include "core/capture/FolderToShow.h"

namespace ambrel {

FolderToShow folderOfSelectedRow(const std::optional<PersonsFolders>& person, const QString& targetDir) {
  if (!person) return {targetDir};
  if (!person->folders.isEmpty()) return {person->folders.front()};
  if (targetDir.isEmpty()) return {};
  return {targetDir,
          QStringLiteral("No photo folder yet for \"%1\" — opening the target folder.").arg(person->name)};
}

FolderToShow folderOfMenuRow(const std::optional<PersonsFolders>& person, const QString& targetDir) {
  if (!person) return {};
  if (!person->folders.isEmpty()) return {person->folders.front()};
  return {targetDir, QStringLiteral("No photo folder exists yet for \"%1\".").arg(person->name)};
}

}  // namespace ambrel
