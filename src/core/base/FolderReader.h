// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "core/base/FolderStream.h"

namespace ambrel {

// Reads the entries of one folder, hidden ones included, in the order the file system gives them. Names are
// bytes: an entry need not be valid text to be there.
class FolderReader {
 public:
  explicit FolderReader(const std::string& path);
  // A folder in `parent`, which a link may lead to.
  FolderReader(const FolderReader& parent, const char* name);

  bool isOpen() const { return _stream.descriptor() >= 0; }
  // Null at the end and on an error, which failed() then tells; valid until the next call. "." and ".." are
  // left out.
  const dirent* next();
  bool failed() const { return _failed; }

  // Of the folder itself.
  std::optional<struct stat> status() const;
  // Of an entry, links followed.
  bool isFolder(const dirent& entry) const;
  std::optional<struct stat> status(const char* name) const;

 private:
  FolderReader(int parent, const char* path);

  FolderStream _stream;
  bool _failed;
};

// Links followed.
bool isFolder(const std::string& path);
bool pathExists(const std::string& path);
// Whether the system says that nothing is there. A disk that cannot answer has lost nothing.
bool pathIsMissing(const std::string& path);
// Names of all entries; none at all when the folder cannot be read to its end.
std::vector<std::string> entriesOf(const std::string& folder);
// Names of those entries that are folders, links followed; none when `folder` cannot be read to its end.
std::vector<std::string> foldersIn(const std::string& folder);

}  // namespace ambrel
