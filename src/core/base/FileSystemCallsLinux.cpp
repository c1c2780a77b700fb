// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <stdio.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/base/FileSystemCalls.h"

namespace ambrel {
namespace {

// Whether a faster way of copying is merely not to be had between these two files.
bool isUnsupported(int error) {
  return error == EXDEV || error == ENOSYS || error == EINVAL || error == EOPNOTSUPP || error == EPERM;
}

ssize_t copyThroughMemory(int from, int to, std::size_t count) {
  std::array<char, 65536> buffer;  // NOLINT(cppcoreguidelines-pro-type-member-init)
  const ssize_t got = ::read(from, buffer.data(), std::min(count, buffer.size()));
  for (ssize_t done = 0; done < got;) {
    const ssize_t written = ::write(to, buffer.data() + done, static_cast<std::size_t>(got - done));
    if (written < 0 && errno != EINTR) return -1;
    done += std::max<ssize_t>(written, 0);
  }
  return got;
}

}  // namespace

int FileSystemCalls::renameNoReplace(const char* from, const char* to) {
  return ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
}

int FileSystemCalls::flush(int descriptor) {
  return ::fsync(descriptor);
}

ssize_t FileSystemCalls::copyBytes(int from, int to, std::size_t count) {
  // Some file systems answer copy_file_range with 0 bytes instead of an error, so 0 is asked a second time.
  const ssize_t inKernel = ::copy_file_range(from, nullptr, to, nullptr, count, 0);
  if (inKernel > 0 || (inKernel < 0 && !isUnsupported(errno))) return inKernel;
  const ssize_t sent = ::sendfile(to, from, nullptr, count);
  if (sent >= 0 || !isUnsupported(errno)) return sent;
  return copyThroughMemory(from, to, count);
}

int FileSystemCalls::setTimes(int descriptor, const struct stat& status) {
  const std::array<timespec, 2> times = {status.st_atim, status.st_mtim};
  return ::futimens(descriptor, times.data());
}

}  // namespace ambrel
