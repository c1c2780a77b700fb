// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <limits>
#include <set>
#include <string>

#include "core/base/FileSystemCalls.h"

namespace ambrel {

// The system's calls, one of which fails: the n-th of all, and where asked those after it. Flushes are
// counted but not carried out, so that thousands of cases take seconds.
class FailingCalls : public FileSystemCalls {
 public:
  enum class Failing { Once, ThisCallForEver, EverythingForEver };
  // What the file system can do: everything, no exclusive rename, or not even a second name for a file.
  enum class Volume { Complete, NoExclusiveRename, NoLinks };

  int failAt = 0;  // counted from 1
  int error = EIO;
  Failing failing = Failing::Once;
  Volume volume = Volume::Complete;
  std::size_t longestWrite = std::numeric_limits<std::size_t>::max();
  std::function<void(const std::string& call)> before;  // each call, before it is carried out

  int calls = 0;
  std::string failedCall;  // empty while none has failed
  std::set<int> openDescriptors = {};

  int open(const char* path, int flags, mode_t mode) override {
    if (fails("open")) return -1;
    const int descriptor = FileSystemCalls::open(path, flags, mode);
    if (descriptor < 0) return -1;
    openDescriptors.insert(descriptor);
    if ((flags & O_ACCMODE) != O_RDONLY) _written.insert(descriptor);
    return descriptor;
  }
  // As on Linux, the descriptor is gone also when that fails. Only a file that was written to has anything to
  // fail for.
  int close(int descriptor) override {
    openDescriptors.erase(descriptor);
    const bool failed = _written.erase(descriptor) > 0 && fails("close");
    const int failure = errno;
    const int answer = FileSystemCalls::close(descriptor);
    errno = failed ? failure : errno;
    return failed ? -1 : answer;
  }
  ssize_t write(int descriptor, const void* bytes, std::size_t count) override {
    if (fails("write")) return -1;
    return FileSystemCalls::write(descriptor, bytes, std::min(count, longestWrite));
  }
  ssize_t copyBytes(int from, int to, std::size_t count) override {
    if (fails("copyBytes")) return -1;
    return FileSystemCalls::copyBytes(from, to, std::min(count, longestWrite));
  }
  int statusOf(const char* path, struct stat* status) override {
    return fails("statusOf") ? -1 : FileSystemCalls::statusOf(path, status);
  }
  int statusOf(int descriptor, struct stat* status) override {
    return fails("statusOf") ? -1 : FileSystemCalls::statusOf(descriptor, status);
  }
  char* resolve(const char* path, char* resolved) override {
    return fails("resolve") ? nullptr : FileSystemCalls::resolve(path, resolved);
  }
  int rename(const char* from, const char* to) override {
    return fails("rename") ? -1 : FileSystemCalls::rename(from, to);
  }
  int renameNoReplace(const char* from, const char* to) override {
    if (fails("renameNoReplace")) return -1;
    if (volume == Volume::Complete) return FileSystemCalls::renameNoReplace(from, to);
    errno = EINVAL;
    return -1;
  }
  int link(const char* from, const char* to) override {
    if (fails("link")) return -1;
    if (volume != Volume::NoLinks) return FileSystemCalls::link(from, to);
    errno = EPERM;
    return -1;
  }
  int unlink(const char* path) override { return fails("unlink") ? -1 : FileSystemCalls::unlink(path); }
  int makeFolder(const char* path) override {
    return fails("makeFolder") ? -1 : FileSystemCalls::makeFolder(path);
  }
  int removeFolder(const char* path) override {
    return fails("removeFolder") ? -1 : FileSystemCalls::removeFolder(path);
  }
  int volumeStatus(const char* path, struct statvfs* status) override {
    return fails("volumeStatus") ? -1 : FileSystemCalls::volumeStatus(path, status);
  }
  // Times are not worth failing for, and are no call that anything depends on.
  int setTimes(int descriptor, const struct stat& status) override {
    return FileSystemCalls::setTimes(descriptor, status);
  }
  int flush(int) override { return fails("flush") ? -1 : 0; }

 private:
  bool fails(const std::string& call) {
    ++calls;
    if (before) before(call);
    const bool again = !failedCall.empty() && (failing == Failing::EverythingForEver ||
                                               (failing == Failing::ThisCallForEver && call == failedCall));
    if (calls != failAt && !again) return false;
    if (failedCall.empty()) failedCall = call;
    errno = error;
    return true;
  }

  std::set<int> _written;
};

}  // namespace ambrel
