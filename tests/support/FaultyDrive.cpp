// SPDX-License-Identifier: Apache-2.0
// To be preloaded: a drive that misbehaves. Calls that touch a path below AMBREL_FAULTY_DRIVE do what the
// file AMBREL_FAULTY_MODE says at that moment:
//   ok     what they always do
//   hang   nothing at all until the file says something else
//   gone   fail, as if nothing were there any more
//   short  copy half of what they are asked to, and then call that the end
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

namespace {

enum class Mode { Ok, Hang, Gone, Short };

template <typename Function>
Function real(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

// By system calls of its own, so that it is never its own victim.
Mode modeNow() {
  const char* file = std::getenv("AMBREL_FAULTY_MODE");
  if (!file) return Mode::Ok;
  const auto descriptor = static_cast<int>(syscall(SYS_openat, AT_FDCWD, file, O_RDONLY | O_CLOEXEC, 0));
  if (descriptor < 0) return Mode::Ok;
  char word[8] = {};
  const long count = syscall(SYS_read, descriptor, word, sizeof word - 1);
  syscall(SYS_close, descriptor);
  const std::string_view text(word, count > 0 ? static_cast<std::size_t>(count) : 0);
  if (text.starts_with("hang")) return Mode::Hang;
  if (text.starts_with("gone")) return Mode::Gone;
  return text.starts_with("short") ? Mode::Short : Mode::Ok;
}

bool isOnDrive(const char* path) {
  const char* drive = std::getenv("AMBREL_FAULTY_DRIVE");
  return drive && path && std::strncmp(path, drive, std::strlen(drive)) == 0;
}

bool isOnDrive(int descriptor) {
  char link[64];
  std::snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
  char path[4096];
  const long length = syscall(SYS_readlinkat, AT_FDCWD, link, path, sizeof path - 1);
  if (length <= 0) return false;
  path[length] = '\0';
  return isOnDrive(path);
}

// The mode once nothing hangs any more; Ok for what lies elsewhere.
template <typename Place>
Mode modeOf(Place place) {
  const int error = errno;
  Mode mode = Mode::Ok;
  if (isOnDrive(place)) {
    while ((mode = modeNow()) == Mode::Hang) {
      const timespec pause = {0, 5'000'000};
      syscall(SYS_nanosleep, &pause, nullptr);
    }
  }
  errno = error;
  return mode;
}

template <typename Place>
bool isGone(Place place, int error) {
  if (modeOf(place) != Mode::Gone) return false;
  errno = error;
  return true;
}

}  // namespace

extern "C" {

int open(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  if (isGone(path, ENOENT)) return -1;
  return real<int (*)(const char*, int, mode_t)>("open")(path, flags, mode);
}

int open64(const char* path, int flags, ...) {
  va_list arguments;
  va_start(arguments, flags);
  const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
  va_end(arguments);
  if (isGone(path, ENOENT)) return -1;
  return real<int (*)(const char*, int, mode_t)>("open64")(path, flags, mode);
}

int stat(const char* path, struct stat* status) {
  return isGone(path, ENOENT) ? -1 : real<int (*)(const char*, struct stat*)>("stat")(path, status);
}

int lstat(const char* path, struct stat* status) {
  return isGone(path, ENOENT) ? -1 : real<int (*)(const char*, struct stat*)>("lstat")(path, status);
}

int mkdir(const char* path, mode_t mode) {
  return isGone(path, ENOENT) ? -1 : real<int (*)(const char*, mode_t)>("mkdir")(path, mode);
}

int unlink(const char* path) {
  return isGone(path, ENOENT) ? -1 : real<int (*)(const char*)>("unlink")(path);
}

int rename(const char* from, const char* to) {
  return isGone(to, ENOENT) ? -1 : real<int (*)(const char*, const char*)>("rename")(from, to);
}

int fsync(int descriptor) {
  return isGone(descriptor, EIO) ? -1 : real<int (*)(int)>("fsync")(descriptor);
}

ssize_t copy_file_range(int from, off64_t* fromOffset, int to, off64_t* toOffset, std::size_t count,
                        unsigned flags) {
  static std::atomic<int> endedShort{-1};
  const Mode mode = modeOf(to);
  if (mode == Mode::Gone) {
    errno = EIO;
    return -1;
  }
  if (mode == Mode::Short) {
    if (endedShort.exchange(to) == to) return 0;
    struct stat status = {};
    fstat(from, &status);
    count = static_cast<std::size_t>(status.st_size / 2);
  } else {
    endedShort = -1;
  }
  return real<ssize_t (*)(int, off64_t*, int, off64_t*, std::size_t, unsigned)>("copy_file_range")(
      from, fromOffset, to, toOffset, count, flags);
}

ssize_t sendfile(int to, int from, off_t* offset, std::size_t count) {
  const Mode mode = modeOf(to);
  if (mode == Mode::Short) return 0;
  if (mode == Mode::Gone) {
    errno = EIO;
    return -1;
  }
  return real<ssize_t (*)(int, int, off_t*, std::size_t)>("sendfile")(to, from, offset, count);
}

}  // extern "C"
