// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace ambrel {

struct PersonsFolders {
  QString name;         // in its file-system-safe form
  QStringList folders;  // absolute paths, the plain one first
};

// A folder to open in the file manager, and what to say about it; empty for nothing.
struct FolderToShow {
  QString folder = {};
  QString status = {};
  bool operator==(const FolderToShow&) const = default;
};

// For the button beside the preview; `person` is the current one, if any.
FolderToShow folderOfSelectedRow(const std::optional<PersonsFolders>& person, const QString& targetDir);
// For a row's menu; none for a row that is not there.
FolderToShow folderOfMenuRow(const std::optional<PersonsFolders>& person, const QString& targetDir);

}  // namespace ambrel
