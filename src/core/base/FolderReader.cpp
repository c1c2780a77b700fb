// SPDX-License-Identifier: Apache-2.0
#include "core/base/FolderReader.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>

namespace ambrel {
namespace {

int openFolder(int parent, const char* path) {
  return ::openat(parent, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

bool isSelfOrParent(const char* name) {
  return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

// A path with a NUL names nothing; the system would read the part before it.
const char* systemPath(const std::string& path) {
  return path.find('\0') == std::string::npos ? path.c_str() : "";
}

std::optional<struct stat> statusOf(const std::string& path) {
  struct stat status = {};
  if (::stat(systemPath(path), &status) != 0) return std::nullopt;
  return status;
}

template <typename Accept>
std::vector<std::string> namesIn(const std::string& folder, Accept accept) {
  FolderReader reader(folder);
  std::vector<std::string> names;
  while (const dirent* entry = reader.next()) {
    if (accept(reader, *entry)) names.emplace_back(entry->d_name);
  }
  if (reader.failed()) names.clear();
  return names;
}

}  // namespace

FolderReader::FolderReader(int parent, const char* path)
    : _stream(openFolder(parent, path)), _failed(!isOpen()) {}

FolderReader::FolderReader(const std::string& path) : FolderReader(AT_FDCWD, systemPath(path)) {}

FolderReader::FolderReader(const FolderReader& parent, const char* name)
    : FolderReader(parent._stream.descriptor(), name) {}

const dirent* FolderReader::next() {
  if (!isOpen()) return nullptr;
  for (;;) {
    const dirent* entry = _stream.next();
    if (!entry) {
      _failed = errno != 0;
      return nullptr;
    }
    if (!isSelfOrParent(entry->d_name)) return entry;
  }
}

bool FolderReader::isFolder(const dirent& entry) const {
  if (entry.d_type != DT_UNKNOWN && entry.d_type != DT_LNK) return entry.d_type == DT_DIR;
  const std::optional<struct stat> followed = status(entry.d_name);
  return followed && S_ISDIR(followed->st_mode);
}

std::optional<struct stat> FolderReader::status() const {
  struct stat status = {};
  if (!isOpen() || ::fstat(_stream.descriptor(), &status) != 0) return std::nullopt;
  return status;
}

std::optional<struct stat> FolderReader::status(const char* name) const {
  struct stat status = {};
  if (!isOpen() || ::fstatat(_stream.descriptor(), name, &status, 0) != 0) return std::nullopt;
  return status;
}

bool isFolder(const std::string& path) {
  const std::optional<struct stat> status = statusOf(path);
  return status && S_ISDIR(status->st_mode);
}

bool pathExists(const std::string& path) {
  return statusOf(path).has_value();
}

bool pathIsMissing(const std::string& path) {
  return !pathExists(path) && (errno == ENOENT || errno == ENOTDIR);
}

std::vector<std::string> entriesOf(const std::string& folder) {
  return namesIn(folder, [](const FolderReader&, const dirent&) { return true; });
}

std::vector<std::string> foldersIn(const std::string& folder) {
  return namesIn(folder,
                 [](const FolderReader& reader, const dirent& entry) { return reader.isFolder(entry); });
}

}  // namespace ambrel
