// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/types.h>

namespace ambrel {

// The system calls that PosixFiles is made of, one operation each, so that a test can fail any of them at any
// moment. All answer as the system does: -1 (or null) and errno on failure. Four differ between platforms
// and stand in a source of their own.
class FileSystemCalls {
 public:
  virtual ~FileSystemCalls() = default;

  virtual int open(const char* path, int flags, mode_t mode);
  virtual int close(int descriptor);
  virtual ssize_t write(int descriptor, const void* bytes, std::size_t count);
  virtual int statusOf(const char* path, struct stat* status);  // of a link itself, not of what it names
  virtual int statusOf(int descriptor, struct stat* status);
  virtual char* resolve(const char* path, char* resolved);  // `resolved` holds PATH_MAX bytes
  virtual int rename(const char* from, const char* to);
  virtual int link(const char* from, const char* to);
  virtual int unlink(const char* path);
  virtual int makeFolder(const char* path);
  virtual int removeFolder(const char* path);
  virtual int volumeStatus(const char* path, struct statvfs* status);

  // EEXIST when `to` exists; EINVAL, ENOSYS or ENOTSUP where the file system cannot promise that.
  virtual int renameNoReplace(const char* from, const char* to);
  // Returns once the bytes have reached the medium.
  virtual int flush(int descriptor);
  // Copies up to `count` bytes from one file position to the other; 0 at the end of `from`.
  virtual ssize_t copyBytes(int from, int to, std::size_t count);
  // Gives a file the times of last access and change that `status` holds.
  virtual int setTimes(int descriptor, const struct stat& status);
};

}  // namespace ambrel
