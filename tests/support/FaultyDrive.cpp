// SPDX-License-Identifier: Apache-2.0
// To be preloaded: a drive that misbehaves. Calls that touch a path below AMBREL_FAULTY_DRIVE do what the
// file AMBREL_FAULTY_MODE says at that moment, which is one word, and where it matters a blank and the folder
// that alone is meant:
//   ok      what they always do
//   hang    nothing at all until the file says something else
//   gone    fail, as if nothing were there any more
//   short   copy half of what they are asked to, and then call that the end
//   full    fail for want of room
//   error   fail to read and write; what is there can still be seen
//   stale   fail, whatever they are asked
//   nearly  what they always do, and tell of little room
#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include "support/InterposedOpen.h"

namespace {

using ambrel::real;

enum class Mode { Ok, Hang, Gone, Short, Full, Error, Stale, Nearly };

// What a call is about, as far as the modes care.
enum class Act { Look, Open, Make, Change, Write, Flush };

constexpr std::array<std::string_view, 8> kWords = {"ok",   "hang",  "gone",  "short",
                                                    "full", "error", "stale", "nearly"};
constexpr fsblkcnt_t kLittleRoom = 64UL << 20;  // bytes

bool isBelow(const char* path, std::string_view folder) {
  return std::strncmp(path, folder.data(), folder.size()) == 0;
}

// The mode for a path, which hangs over those who ask. By system calls of its own, so that it is never its
// own victim.
Mode modeNow(const char* path) {
  const char* file = std::getenv("AMBREL_FAULTY_MODE");
  if (!file) return Mode::Ok;
  const auto descriptor = static_cast<int>(syscall(SYS_openat, AT_FDCWD, file, O_RDONLY | O_CLOEXEC, 0));
  if (descriptor < 0) return Mode::Ok;
  char line[1024] = {};
  const long count = syscall(SYS_read, descriptor, line, sizeof line - 1);
  syscall(SYS_close, descriptor);
  const std::string_view text(line, count > 0 ? static_cast<std::size_t>(count) : 0);
  const std::size_t blank = text.find(' ');
  if (blank != std::string_view::npos && !isBelow(path, text.substr(blank + 1))) return Mode::Ok;
  const auto* const word = std::find(kWords.begin(), kWords.end(), text.substr(0, blank));
  return word == kWords.end() ? Mode::Ok : static_cast<Mode>(word - kWords.begin());
}

// The mode once nothing hangs any more; Ok for what lies elsewhere.
Mode modeOf(const char* path) {
  const char* drive = std::getenv("AMBREL_FAULTY_DRIVE");
  if (!drive || !path || !isBelow(path, drive)) return Mode::Ok;
  const int error = errno;
  Mode mode = Mode::Ok;
  while ((mode = modeNow(path)) == Mode::Hang) {
    const timespec pause = {0, 5'000'000};
    syscall(SYS_nanosleep, &pause, nullptr);
  }
  errno = error;
  return mode;
}

Mode modeOf(int descriptor) {
  const int error = errno;
  char link[64];
  std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
  char path[4096];
  const long length = syscall(SYS_readlinkat, AT_FDCWD, link, path, sizeof path - 1);
  errno = error;
  if (length <= 0) return Mode::Ok;
  path[length] = '\0';
  return modeOf(path);
}

// Of a path that may start in an open folder.
Mode modeOf(int folder, const char* path) {
  return folder == AT_FDCWD || (path && *path == '/') ? modeOf(path) : modeOf(folder);
}

// What a call fails with, or 0.
int errorOf(Mode mode, Act act) {
  switch (mode) {
    case Mode::Ok:
    case Mode::Hang:
    case Mode::Short:
    case Mode::Nearly:
      return 0;
    case Mode::Gone:
      return act == Act::Write || act == Act::Flush ? EIO : ENOENT;
    case Mode::Full:
      return act == Act::Make || act == Act::Write ? ENOSPC : 0;
    case Mode::Error:
      return act == Act::Look ? 0 : EIO;
    case Mode::Stale:
      return ESTALE;
  }
  return 0;
}

bool fails(Mode mode, Act act) {
  const int error = errorOf(mode, act);
  if (error != 0) errno = error;
  return error != 0;
}

template <typename Call>
int openFile(int folder, const char* path, int flags, Call call) {
  const Act act = (flags & O_CREAT) != 0 ? Act::Make : Act::Open;
  return fails(modeOf(folder, path), act) ? -1 : call();
}

template <typename Status>
int tellOfLittleRoom(Mode mode, int answer, Status* status) {
  if (answer == 0 && mode == Mode::Nearly) {
    status->f_bavail = std::min<fsblkcnt_t>(status->f_bavail, kLittleRoom / status->f_frsize);
  }
  return answer;
}

}  // namespace

extern "C" {

AMBREL_INTERPOSE_OPEN(open, openFile)
AMBREL_INTERPOSE_OPEN(open64, openFile)
AMBREL_INTERPOSE_OPENAT(openat, openFile)
AMBREL_INTERPOSE_OPENAT(openat64, openFile)

int stat(const char* path, struct stat* status) {
  static const auto call = real<int (*)(const char*, struct stat*)>("stat");
  return fails(modeOf(path), Act::Look) ? -1 : call(path, status);
}

int lstat(const char* path, struct stat* status) {
  static const auto call = real<int (*)(const char*, struct stat*)>("lstat");
  return fails(modeOf(path), Act::Look) ? -1 : call(path, status);
}

int fstatat(int folder, const char* path, struct stat* status, int flags) {
  static const auto call = real<int (*)(int, const char*, struct stat*, int)>("fstatat");
  return fails(modeOf(folder, path), Act::Look) ? -1 : call(folder, path, status, flags);
}

int statvfs(const char* path, struct statvfs* status) {
  static const auto call = real<int (*)(const char*, struct statvfs*)>("statvfs");
  const Mode mode = modeOf(path);
  return fails(mode, Act::Look) ? -1 : tellOfLittleRoom(mode, call(path, status), status);
}

ssize_t getdents64(int folder, void* entries, std::size_t size) {
  static const auto call = real<ssize_t (*)(int, void*, std::size_t)>("getdents64");
  return fails(modeOf(folder), Act::Open) ? -1 : call(folder, entries, size);
}

int mkdir(const char* path, mode_t mode) {
  static const auto call = real<int (*)(const char*, mode_t)>("mkdir");
  return fails(modeOf(path), Act::Make) ? -1 : call(path, mode);
}

int symlink(const char* target, const char* path) {
  static const auto call = real<int (*)(const char*, const char*)>("symlink");
  return fails(modeOf(path), Act::Make) ? -1 : call(target, path);
}

int unlink(const char* path) {
  static const auto call = real<int (*)(const char*)>("unlink");
  return fails(modeOf(path), Act::Change) ? -1 : call(path);
}

int rename(const char* from, const char* to) {
  static const auto call = real<int (*)(const char*, const char*)>("rename");
  return fails(modeOf(from), Act::Change) || fails(modeOf(to), Act::Change) ? -1 : call(from, to);
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
  static const auto call = real<int (*)(int, const char*, int, const char*, unsigned)>("renameat2");
  const bool refused =
      fails(modeOf(fromFolder, from), Act::Change) || fails(modeOf(toFolder, to), Act::Change);
  return refused ? -1 : call(fromFolder, from, toFolder, to, flags);
}

int fsync(int descriptor) {
  static const auto call = real<int (*)(int)>("fsync");
  return fails(modeOf(descriptor), Act::Flush) ? -1 : call(descriptor);
}

int fallocate(int descriptor, int mode, off_t offset, off_t length) {
  static const auto call = real<int (*)(int, int, off_t, off_t)>("fallocate");
  return fails(modeOf(descriptor), Act::Write) ? -1 : call(descriptor, mode, offset, length);
}

ssize_t write(int descriptor, const void* bytes, std::size_t count) {
  static const auto call = real<ssize_t (*)(int, const void*, std::size_t)>("write");
  return fails(modeOf(descriptor), Act::Write) ? -1 : call(descriptor, bytes, count);
}

ssize_t copy_file_range(int from, off64_t* fromOffset, int to, off64_t* toOffset, std::size_t count,
                        unsigned flags) {
  static const auto call =
      real<ssize_t (*)(int, off64_t*, int, off64_t*, std::size_t, unsigned)>("copy_file_range");
  static std::atomic<int> endedShort{-1};
  const Mode mode = modeOf(to);
  if (fails(mode, Act::Write)) return -1;
  if (mode == Mode::Short) {
    if (endedShort.exchange(to) == to) return 0;
    struct stat status = {};
    fstat(from, &status);
    count = static_cast<std::size_t>(status.st_size / 2);
  } else {
    endedShort = -1;
  }
  return call(from, fromOffset, to, toOffset, count, flags);
}

ssize_t sendfile(int to, int from, off_t* offset, std::size_t count) {
  static const auto call = real<ssize_t (*)(int, int, off_t*, std::size_t)>("sendfile");
  const Mode mode = modeOf(to);
  if (mode == Mode::Short) return 0;
  return fails(mode, Act::Write) ? -1 : call(to, from, offset, count);
}

}  // extern "C"
