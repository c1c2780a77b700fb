// SPDX-License-Identifier: Apache-2.0
#include "integration/capture/PlainDisk.h"

#include <filesystem>

namespace ambrel {
namespace {

constexpr std::size_t kLongestName = 255;

bool isDots(const std::string& name) {
  return name == "." || name == "..";
}

bool isBelow(const std::string& path, const std::string& folder) {
  return path.starts_with(folder + '/');
}

}  // namespace

std::string plainPath(const std::string& path) {
  std::string plain = std::filesystem::path(path).lexically_normal().string();
  while (plain.size() > 1 && plain.ends_with('/'))
    plain.pop_back();
  return plain;
}

std::string lastName(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

std::string parentPath(const std::string& path) {
  return path.substr(0, path.rfind('/'));
}

bool PlainDisk::isFolder(const std::string& path) const {
  const auto found = _entries.find(plainPath(path));
  return found != _entries.end() && !found->second;
}

PlainDisk::Names PlainDisk::namesIn(const std::string& folder) const {
  const std::string start = plainPath(folder) + '/';
  Names names;
  for (const auto& [path, bytes] : _entries) {
    if (path.starts_with(start) && path.find('/', start.size()) == std::string::npos)
      names.push_back(path.substr(start.size()));
  }
  return names;
}

// Whether the system takes a new entry there.
bool PlainDisk::canHold(const std::string& path) const {
  return !exists(path) && isFolder(parentPath(plainPath(path))) && lastName(path).size() <= kLongestName;
}

bool PlainDisk::makeFolders(const std::string& path) {
  const std::string plain = plainPath(path);
  if (exists(plain)) return isFolder(plain);
  if (plain.rfind('/') == 0 || !makeFolders(parentPath(plain)) || !canHold(plain)) return false;
  _entries[plain] = std::nullopt;
  return true;
}

bool PlainDisk::makeFile(const std::string& path, const std::string& bytes) {
  if (!canHold(path)) return false;
  _entries[plainPath(path)] = bytes;
  return true;
}

bool PlainDisk::move(const std::string& from, const std::string& to) {
  const std::string source = plainPath(from);
  const std::string place = plainPath(to);
  if (isDots(lastName(from)) || !exists(source) || !canHold(to) || isBelow(place, source)) return false;
  Entries after;
  for (const auto& [path, bytes] : _entries) {
    const bool moves = path == source || isBelow(path, source);
    after[moves ? place + path.substr(source.size()) : path] = bytes;
  }
  _entries = after;
  return true;
}

void PlainDisk::remove(const std::string& path) {
  const std::string gone = plainPath(path);
  std::erase_if(_entries, [&](const auto& each) { return each.first == gone || isBelow(each.first, gone); });
}

}  // namespace ambrel
