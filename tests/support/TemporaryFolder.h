// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace ambrel::test {

// A folder of the test's own, removed with everything in it at the end.
class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return _path; }
  std::string file(const std::string& name) const { return _path + "/" + name; }
  void write(const std::string& name, const std::string& content) const;
  // Empty when there is no such file.
  std::string read(const std::string& name) const;
  // Of files and folders directly inside, sorted.
  std::vector<std::string> names() const;

 private:
  std::string _path;
};

}  // namespace ambrel::test
