// SPDX-License-Identifier: Apache-2.0
#include "support/TemporaryFolder.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace ambrel::test {

namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  _path = (fs::temp_directory_path() / "ambrel-test-XXXXXX").string();
  if (mkdtemp(_path.data()) == nullptr) throw std::runtime_error("no temporary folder for the test");
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code error;
  fs::remove_all(_path, error);
}

void TemporaryFolder::write(const std::string& name, const std::string& content) const {
  std::ofstream(file(name), std::ios::binary) << content;
}

std::string TemporaryFolder::read(const std::string& name) const {
  std::ifstream stream(file(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::string> TemporaryFolder::names() const {
  std::vector<std::string> found;
  for (const fs::directory_entry& entry : fs::directory_iterator(_path)) {
    found.push_back(entry.path().filename().string());
  }
  std::sort(found.begin(), found.end());
  return found;
}

}  // namespace ambrel::test
