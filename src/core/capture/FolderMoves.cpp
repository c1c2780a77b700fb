// SPDX-License-Identifier: Apache-2.0
#include "core/capture/FolderMoves.h"

#include <algorithm>
#include <unistd.h>
#include <utility>

#include "core/base/FolderReader.h"
#include "core/base/PathText.h"
#include "core/base/Text.h"
#include "core/capture/FileNames.h"
#include "core/capture/PhotoFolders.h"

namespace ambrel {
namespace {

constexpr std::size_t kMinDigits = 4;

std::string numbered(std::string_view prefix, qint64 number, std::string_view extension) {
  std::string digits = std::to_string(number);
  digits.insert(0, kMinDigits - std::min(kMinDigits, digits.size()), '0');
  return std::string(prefix).append("_").append(digits).append(".").append(extension);
}

ListedFolder listed(const std::string& path) {
  return {path, entriesOf(path)};
}

struct CarriedOut {
  std::vector<FileMove> moves;
  bool allTried = true;
};

CarriedOut carryOut(Files& files, const std::vector<FileMove>& moves, const RenameWatch& watch) {
  CarriedOut done;
  for (const FileMove& move : moves) {
    if (watch.stop()) {
      done.allTried = false;
      break;
    }
    // A refused photo stays where it is.
    if (files.moveWithoutOverwriting(path_to_ns(move.from), path_to_ns(move.to)).ok())
      done.moves.push_back(move);
  }
  return done;
}

void announce(const RenameWatch& watch, const ListedFolder& folder, const std::vector<FileMove>& moves) {
  if (!watch.willTake) return;
  QStringList paths;
  for (const std::string& name : folder.entries) {
    if (is_image_file_name(name)) paths.append(path_to_ns(folder.path + '/' + name));
  }
  for (const FileMove& move : moves)
    paths.append(path_to_ns(move.to));
  watch.willTake(paths);
}

RenameOutcome merge(Files& files, const std::string& folder, const std::string& destination,
                    const RenameWatch& watch) {
  const std::vector<FileMove> moves = movesOfMerge(listed(folder), listed(destination), nameOf(destination));
  announce(watch, {}, moves);
  CarriedOut done = carryOut(files, moves, watch);
  // The system removes a folder only when it is completely empty.
  if (done.allTried) ::rmdir(folder.c_str());
  return {static_cast<qint64>(moves.size()), {}, {{}, std::move(done.moves)}};
}

RenameOutcome rename(Files& files, const std::string& folder, const std::string& destination,
                     const RenameWatch& watch) {
  const auto movesIn = [&](const ListedFolder& renamed) {
    return movesOfRename(renamed, nameOf(folder), nameOf(destination));
  };
  if (watch.willTake) {
    const ListedFolder planned{destination, entriesOf(folder)};
    announce(watch, planned, movesIn(planned));
  }
  const Files::MoveResult moved = files.moveWithoutOverwriting(path_to_ns(folder), path_to_ns(destination));
  if (!moved.ok()) {
    return {0, moved.message.isEmpty() ? QStringLiteral("Could not rename the folder.") : moved.message};
  }
  const ListedFolder renamed = listed(destination);
  CarriedOut done = carryOut(files, movesIn(renamed), watch);
  return {std::count_if(renamed.entries.begin(), renamed.entries.end(), is_image_file_name),
          {},
          {{{folder, destination}}, std::move(done.moves)}};
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
                               const RenameWatch& watch) {
  const std::string destination = renamedPath(folder, sanitisedName);
  return pathExists(destination) ? merge(files, folder, destination, watch)
                                 : rename(files, folder, destination, watch);
}

}  // namespace ambrel
