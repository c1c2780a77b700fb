// SPDX-License-Identifier: Apache-2.0
#include "core/capture/FolderMoves.h"

#include <algorithm>
#include <unistd.h>

#include "core/base/FolderReader.h"
#include "core/base/PathText.h"
#include "core/base/Text.h"
#include "core/capture/FileNames.h"
#include "core/capture/PhotoFolders.h"

namespace ambrel {
namespace {

constexpr std::size_t kMinDigits = 4;

std::string parentOf(const std::string& path) {
  return path.substr(0, path.rfind('/'));
}

std::string nameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

std::string numbered(std::string_view prefix, qint64 number, std::string_view extension) {
  std::string digits = std::to_string(number);
  digits.insert(0, kMinDigits - std::min(kMinDigits, digits.size()), '0');
  return std::string(prefix).append("_").append(digits).append(".").append(extension);
}

ListedFolder listed(const std::string& path) {
  return {path, entriesOf(path)};
}

// Whether all moves were tried.
bool carryOut(Files& files, const std::vector<FileMove>& moves, const std::function<bool()>& stop) {
  for (const FileMove& move : moves) {
    if (stop()) return false;
    // A refused photo stays where it is.
    static_cast<void>(files.moveWithoutOverwriting(path_to_ns(move.from), path_to_ns(move.to)));
  }
  return true;
}

RenameOutcome merge(Files& files, const std::string& folder, const std::string& destination,
                    const std::function<bool()>& stop) {
  const std::vector<FileMove> moves = movesOfMerge(listed(folder), listed(destination), nameOf(destination));
  // The system removes a folder only when it is completely empty.
  if (carryOut(files, moves, stop)) ::rmdir(folder.c_str());
  return {static_cast<qint64>(moves.size())};
}

RenameOutcome rename(Files& files, const std::string& folder, const std::string& destination,
                     const std::function<bool()>& stop) {
  const Files::MoveResult moved = files.moveWithoutOverwriting(path_to_ns(folder), path_to_ns(destination));
  if (!moved.ok()) {
    return {0, moved.message.isEmpty() ? QStringLiteral("Could not rename the folder.") : moved.message};
  }
  const ListedFolder renamed = listed(destination);
  carryOut(files, movesOfRename(renamed, nameOf(folder), nameOf(destination)), stop);
  return {std::count_if(renamed.entries.begin(), renamed.entries.end(), is_image_file_name)};
}

}  // namespace

std::vector<FileMove> movesOfMerge(const ListedFolder& source, const ListedFolder& destination,
                                   std::string_view newName) {
  qint64 number = maxNumberedIndex(destination.entries, newName);
  std::vector<FileMove> moves;
  for (const std::string& name : source.entries) {
    if (!is_image_file_name(name)) continue;
    const std::string newFile = numbered(newName, ++number, path_extension(name));
    moves.push_back({source.path + '/' + name, destination.path + '/' + newFile});
  }
  return moves;
}

std::vector<FileMove> movesOfRename(const ListedFolder& folder, std::string_view oldName,
                                    std::string_view newName) {
  std::vector<FileMove> moves;
  for (const std::string& name : folder.entries) {
    if (!is_image_file_name(name) || !name.starts_with(oldName)) continue;
    const std::string newFile = std::string(newName) + name.substr(oldName.size());
    if (newFile != name) moves.push_back({folder.path + '/' + name, folder.path + '/' + newFile});
  }
  return moves;
}

Result<std::string> checkedFolderName(const std::string& folder, const QString& typed) {
  const QString trimmed = NSTrim(typed);
  if (!trimmed.isValidUtf16()) return Failure{QStringLiteral("Please enter a valid name.")};
  const std::string name = sanitize_filename(ns_to_std(trimmed));
  if (name == nameOf(folder)) return Failure{QStringLiteral("That is already the folder's name.")};
  return name;
}

RenameOutcome renameFolderFSAt(Files& files, const std::string& folder, const std::string& sanitisedName,
                               const std::function<bool()>& stop) {
  const std::string destination = parentOf(folder) + '/' + sanitisedName;
  return pathExists(destination) ? merge(files, folder, destination, stop)
                                 : rename(files, folder, destination, stop);
}

}  // namespace ambrel
