// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "core/base/SerialThread.h"
#include "core/capture/PhotoFolders.h"
#include "unit/core/list/ListFixture.h"

namespace ambrel {

// A list and a target folder, both real. Names below the target folder are bytes.
class FoldersFixture : public ListFixture {
 protected:
  using Names = std::vector<std::string>;
  static constexpr std::chrono::seconds kLongEnough{60};

  FoldersFixture() { std::filesystem::create_directory(target); }
  // QTemporaryDir does not find what has no text for a name.
  ~FoldersFixture() override { std::filesystem::remove_all(target); }

  std::string inTarget(const std::string& name) const { return target + '/' + name; }
  // Makes a file below the target folder, with the folders on the way to it; it holds its name unless said
  // otherwise.
  void makeFile(const std::string& name, const std::string& bytes = {}) const {
    const std::filesystem::path path(inTarget(name));
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file << (bytes.empty() ? name : bytes);
    ASSERT_TRUE(file.good()) << path;
  }
  void makeFiles(const Names& names) const {
    for (const std::string& name : names)
      makeFile(name);
  }
  void makeFolder(const std::string& name) const { std::filesystem::create_directories(inTarget(name)); }
  static std::string bytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return file ? bytes.str() : "(missing)";
  }
  // Everything below a folder, from there on, sorted; folders end with "/".
  static Names allBelow(const std::string& folder) {
    Names names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      const std::string name = entry.path().string().substr(folder.size() + 1);
      names.push_back(entry.is_directory() && !entry.is_symlink() ? name + '/' : name);
    }
    std::sort(names.begin(), names.end());
    return names;
  }
  Names allInTarget() const { return allBelow(target); }

  // Lets the filing thread finish what it has, and its answers arrive.
  void serve() { ASSERT_TRUE(thread.finish(kLongEnough)); }

  std::vector<std::int64_t> counts() const {
    std::vector<std::int64_t> found;
    for (std::int64_t row = 0; row < list.grid().rowCount(); ++row)
      found.push_back(list.grid().capturedForModelRow(row));
    return found;
  }

  std::string target = path(QStringLiteral("Photos")).toStdString();
  QString targetDir = QString::fromStdString(target);
  SerialThread thread;
  PhotoFolders folders{thread, list, [this] { return targetDir; }};
};

}  // namespace ambrel
