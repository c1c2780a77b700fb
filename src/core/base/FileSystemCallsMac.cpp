// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <stdio.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/base/FileSystemCalls.h"

namespace ambrel {

int FileSystemCalls::renameNoReplace(const char* from, const char* to) {
  return ::renamex_np(from, to, RENAME_EXCL);
}

int FileSystemCalls::flush(int descriptor) {
  // fsync stops at the drive's own cache here; network volumes know nothing else.
  return ::fcntl(descriptor, F_FULLFSYNC) == 0 ? 0 : ::fsync(descriptor);
}

ssize_t FileSystemCalls::copyBytes(int from, int to, std::size_t count) {
  constexpr std::size_t kPiece = 1 << 20;
  const auto buffer = std::make_unique<char[]>(kPiece);
  const ssize_t got = ::read(from, buffer.get(), std::min(count, kPiece));
  for (ssize_t done = 0; done < got;) {
    const ssize_t written = ::write(to, buffer.get() + done, static_cast<std::size_t>(got - done));
    if (written < 0 && errno != EINTR) return -1;
    done += std::max<ssize_t>(written, 0);
  }
  return got;
}

int FileSystemCalls::setTimes(int descriptor, const struct stat& status) {
  const std::array<timespec, 2> times = {status.st_atimespec, status.st_mtimespec};
  return ::futimens(descriptor, times.data());
}

}  // namespace ambrel
