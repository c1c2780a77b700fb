// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "core/base/Files.h"
#include "core/base/Result.h"

namespace ambrel {

// One file on its way; absolute paths, as bytes.
struct FileMove {
  std::string from;
  std::string to;
  bool operator==(const FileMove&) const = default;
};

// A folder and the names of its entries in listing order.
struct ListedFolder {
  std::string path;
  std::vector<std::string> entries;
};

// The photos of `source` go into `destination`, which is named `newName`, under numbers after the highest one
// there. Other files stay.
std::vector<FileMove> movesOfMerge(const ListedFolder& source, const ListedFolder& destination,
                                   std::string_view newName);
// The photos of a folder that was named `oldName` and is named `newName` now: what begins with the one shall
// begin with the other. Photos whose names stay are left out.
std::vector<FileMove> movesOfRename(const ListedFolder& folder, std::string_view oldName,
                                    std::string_view newName);

// The name that a folder gets for what was typed, file-system-safe; fails where that is no name, or the one
// that the folder has already.
Result<std::string> checkedFolderName(const std::string& folder, const QString& typed);

// What a rename brought to other paths: first the folder itself, with all that is in it, then files.
struct MovedFiles {
  std::vector<FileMove> folders = {};
  std::vector<FileMove> files = {};
};

// How many photos a rename handled, what hindered it (empty when nothing did), and what has moved.
struct RenameOutcome {
  qint64 photos = 0;
  QString message = {};
  MovedFiles moved = {};
};

struct RenameWatch {
  // Asked before each move: whether nobody waits for the rename any more.
  std::function<bool()> stop;
  // Told before anything moves: every path that a photo may come to have, be it for a moment.
  std::function<void(const QStringList& paths)> willTake = {};
};

// Gives a folder another name beside its old one, and its photos names to match; where a folder of that name
// exists, the photos go into it and the old folder goes once it is empty. Nothing is ever overwritten: a
// photo whose move is refused stays where it is, and counts all the same.
RenameOutcome renameFolderFSAt(Files& files, const std::string& folder, const std::string& sanitisedName,
                               const RenameWatch& watch);

}  // namespace ambrel
