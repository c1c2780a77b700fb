// SPDX-License-Identifier: Apache-2.0
#include "camera/FileMove.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>
#if defined(__linux__)
#include <linux/fs.h>
#include <sys/syscall.h>
#endif

namespace ambrel::camera {
namespace {

// The name being taken, or the disk failing, is an answer; only a missing ability sends us to the next way.
bool isMissingAbility(int error) {
  return error == EINVAL || error == ENOSYS || error == EOPNOTSUPP || error == EPERM || error == EMLINK;
}

}  // namespace

int renameExclusively(const std::string& from, const std::string& to) {
#if defined(__linux__)
  const long result = syscall(SYS_renameat2, AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE);
#elif defined(__APPLE__)
  const int result = renamex_np(from.c_str(), to.c_str(), RENAME_EXCL);
#endif
  return result == 0 ? 0 : errno;
}

int linkAndUnlink(const std::string& from, const std::string& to) {
  if (link(from.c_str(), to.c_str()) != 0) return errno;
  unlink(from.c_str());
  return 0;
}

int reserveAndRename(const std::string& from, const std::string& to) {
  const int reserved = open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (reserved < 0) return errno;
  close(reserved);
  if (std::rename(from.c_str(), to.c_str()) == 0) return 0;
  const int error = errno;
  unlink(to.c_str());
  return error;
}

int moveWithoutOverwriting(const std::string& from, const std::string& to) {
  int error = renameExclusively(from, to);
  if (isMissingAbility(error)) error = linkAndUnlink(from, to);
  if (isMissingAbility(error)) error = reserveAndRename(from, to);
  return error;
}

}  // namespace ambrel::camera
