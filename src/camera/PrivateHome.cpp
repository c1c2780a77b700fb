// SPDX-License-Identifier: Apache-2.0
#include "camera/PrivateHome.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace ambrel::camera {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPrefix = "ambrel-worker-";

bool isOurs(const fs::path& path) {
  struct stat status = {};
  return lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode) && status.st_uid == geteuid();
}

// The name is the prefix, the process id, a dash and six random letters.
bool isAbandoned(const fs::path& path) {
  const std::string name = path.filename().string();
  if (name.compare(0, kPrefix.size(), kPrefix) != 0) return false;
  const int pid = std::atoi(name.c_str() + kPrefix.size());
  return pid > 0 && kill(pid, 0) != 0 && errno == ESRCH && isOurs(path);
}

void removeAbandoned(const fs::path& parent) {
  std::error_code error;
  for (fs::directory_iterator entry(parent, error), end; !error && entry != end; entry.increment(error)) {
    std::error_code ignored;
    if (isAbandoned(entry->path())) fs::remove_all(entry->path(), ignored);
  }
}

}  // namespace

PrivateHome::PrivateHome() {
  std::error_code error;
  const fs::path parent = fs::temp_directory_path(error);
  if (error) return;
  removeAbandoned(parent);
  std::string path = (parent / (std::string(kPrefix) + std::to_string(getpid()) + "-XXXXXX")).string();
  if (mkdtemp(path.data()) == nullptr) return;
  _path = path;
  setenv("HOME", _path.c_str(), 1);
}

void PrivateHome::remove() const {
  std::error_code error;
  if (!_path.empty()) fs::remove_all(_path, error);
}

}  // namespace ambrel::camera
