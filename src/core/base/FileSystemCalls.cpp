// SPDX-License-Identifier: Apache-2.0
#include "core/base/FileSystemCalls.h"

#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

namespace ambrel {

int FileSystemCalls::open(const char* path, int flags, mode_t mode) {
  return ::open(path, flags, mode);
}

int FileSystemCalls::close(int descriptor) {
  return ::close(descriptor);
}

ssize_t FileSystemCalls::write(int descriptor, const void* bytes, std::size_t count) {
  return ::write(descriptor, bytes, count);
}

int FileSystemCalls::statusOf(const char* path, struct stat* status) {
  return ::lstat(path, status);
}

int FileSystemCalls::statusOf(int descriptor, struct stat* status) {
  return ::fstat(descriptor, status);
}

char* FileSystemCalls::resolve(const char* path, char* resolved) {
  return ::realpath(path, resolved);
}

int FileSystemCalls::rename(const char* from, const char* to) {
  return ::rename(from, to);
}

int FileSystemCalls::link(const char* from, const char* to) {
  return ::linkat(AT_FDCWD, from, AT_FDCWD, to, 0);
}

int FileSystemCalls::unlink(const char* path) {
  return ::unlink(path);
}

int FileSystemCalls::makeFolder(const char* path) {
  return ::mkdir(path, 0777);
}

int FileSystemCalls::removeFolder(const char* path) {
  return ::rmdir(path);
}

int FileSystemCalls::volumeStatus(const char* path, struct statvfs* status) {
  return ::statvfs(path, status);
}

}  // namespace ambrel
