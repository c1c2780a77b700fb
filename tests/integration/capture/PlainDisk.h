// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace ambrel {

// A path without "." and "..".
std::string plainPath(const std::string& path);
// What stands after the last separator, and before it.
std::string lastName(const std::string& path);
std::string parentPath(const std::string& path);

// What is to be on the disk: files and folders by their absolute paths, no bytes for a folder. Paths may hold
// "." and "..", as those made from names do.
class PlainDisk {
 public:
  using Entries = std::map<std::string, std::optional<std::string>>;
  using Names = std::vector<std::string>;

  const Entries& entries() const { return _entries; }
  bool exists(const std::string& path) const { return _entries.count(plainPath(path)) == 1; }
  bool isFolder(const std::string& path) const;
  // Of a file.
  std::string bytesOf(const std::string& path) const { return *_entries.at(plainPath(path)); }
  Names namesIn(const std::string& folder) const;

  // The folder that everything else is in.
  void place(const std::string& folder) { _entries[folder] = std::nullopt; }
  // These refuse what the system refuses.
  bool makeFolders(const std::string& path);
  bool makeFile(const std::string& path, const std::string& bytes);
  bool move(const std::string& from, const std::string& to);
  // With everything in it.
  void remove(const std::string& path);

 private:
  bool canHold(const std::string& path) const;

  Entries _entries;
};

}  // namespace ambrel
