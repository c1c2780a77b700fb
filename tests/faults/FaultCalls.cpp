// SPDX-License-Identifier: Apache-2.0
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <new>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include "faults/FaultPlan.h"
#include "support/InterposedOpen.h"

namespace ambrel::faults {
namespace {

constexpr int kDescriptors = 1024;
constexpr std::size_t kPathBytes = 300;
// Libraries repeat an interrupted call without end; no signal comes as often as this.
constexpr int kMostInterruptions = 300;

// Zero before anything else runs: the calls are made from the first moment of the process on.
Report* report = nullptr;
Plan plan;
char home[kPathBytes];
std::size_t homeLength = 0;
std::atomic<bool> failing{false};
std::atomic<int> lastThread{0};
std::atomic<int> interruptions{0};
void (*renameWatcher)(const char* from, const char* to) = nullptr;
thread_local int thisThread = 0;

struct OpenFile {
  bool known;
  bool written;
  char path[kPathBytes];
};
OpenFile openFiles[kDescriptors];

bool isInHome(const char* path) {
  return path && std::strncmp(path, home, homeLength) == 0 &&
         (path[homeLength] == '/' || path[homeLength] == 0);
}

// Devices and the process's own state are nobody's files.
bool isAFile(const char* path) {
  return path && std::strncmp(path, "/dev/", 5) != 0 && std::strncmp(path, "/proc/", 6) != 0;
}

const char* pathOf(int descriptor) {
  if (descriptor < 0 || descriptor >= kDescriptors || !openFiles[descriptor].known) return nullptr;
  return openFiles[descriptor].path;
}

template <std::size_t Size>
void put(std::array<char, Size>& field, const char* text) {
  if (!text) return;
  const char* const shown = isInHome(text) ? text + homeLength : text;
  std::strncpy(field.data(), shown, Size - 1);
}

Call described(const char* name, const char* path, const char* path2, int error) {
  Call call = {};
  call.thread = static_cast<std::int16_t>(thisThread);
  call.error = static_cast<std::int16_t>(error);
  put(call.name, name);
  put(call.path, path);
  put(call.path2, path2);
  return call;
}

void log(const Call& call) {
  const std::uint32_t place = report->logged.fetch_add(1);
  if (place < kLogEntries) report->log[place] = call;
}

[[noreturn]] void die() {
  for (;;)
    syscall(SYS_kill, syscall(SYS_getpid), SIGKILL);
}

// What a call is to do instead of what it always does.
struct Verdict {
  bool counts = false;
  int error = 0;
  std::size_t share = 0;  // 0: all bytes; otherwise so many of them
  bool dieAfter = false;
};

bool isChosen(Side side, std::uint32_t number) {
  return plan.kind != Kind::None && plan.side == side && plan.thread == thisThread && plan.call == number;
}

Verdict failed(int error) {
  if (error == EINTR && interruptions.fetch_add(1) > kMostInterruptions) return {true};
  return {true, error};
}

Verdict judge(const Call& call, std::size_t bytes) {
  report->hit = true;
  report->hitCall = call;
  switch (plan.kind) {
    case Kind::None:
      break;
    case Kind::Kill:
      die();
    case Kind::TornKill:
      if (bytes == 0) die();
      return {true, 0, bytes / 2 + 1, true};
    case Kind::Once:
      return failed(plan.error);
    case Kind::ForEver:
      failing = true;
      return failed(plan.error);
    case Kind::OneByte:
      failing = true;
      return {true, 0, 1};
    case Kind::Short:
      return {true, 0, bytes / 2 + 1};
    case Kind::Terminate:
      syscall(SYS_kill, syscall(SYS_getpid), SIGTERM);
      break;
  }
  return {true};
}

// Every call comes by here first. `bytes` is what it is asked to write.
Verdict meet(Side side, const char* name, const char* path, const char* path2 = nullptr,
             std::size_t bytes = 0) {
  if (!report || (!isInHome(path) && !isInHome(path2))) {
    if (report && side == Side::Changing && isAFile(path)) log(described(name, path, path2, kOutsideHome));
    return {};
  }
  if (thisThread >= static_cast<int>(kThreads)) return {};
  report->total.fetch_add(side == Side::Changing ? 1 : 0);
  const auto sideIndex = static_cast<std::size_t>(side);
  const std::uint32_t number = ++report->calls[sideIndex][static_cast<std::size_t>(thisThread)];
  const Call call = described(name, path, path2, 0);
  Verdict verdict = {true};
  if (isChosen(side, number)) {
    verdict = judge(call, bytes);
  } else if (failing && side == plan.side) {
    verdict = plan.kind == Kind::OneByte ? Verdict{true, 0, 1} : failed(plan.error);
  }
  return verdict;
}

void conclude(const Verdict& verdict, const char* name, const char* path, const char* path2, bool done) {
  const int error = errno;
  if (verdict.counts) log(described(name, path, path2, done ? 0 : error));
  if (verdict.dieAfter) die();
  errno = error;
}

// Runs a call that changes files by its paths.
template <typename Act>
int change(const char* name, const char* path, const char* path2, Act act) {
  const Verdict verdict = meet(Side::Changing, name, path, path2);
  if (verdict.error != 0) errno = verdict.error;
  const int answer = verdict.error != 0 ? -1 : act();
  conclude(verdict, name, path, path2, answer >= 0);
  return answer;
}

template <typename Act>
ssize_t changeBytes(const char* name, int descriptor, std::size_t count, Act act) {
  const char* const path = pathOf(descriptor);
  if (!path) return act(count);
  const Verdict verdict = meet(Side::Changing, name, path, nullptr, count);
  if (verdict.error != 0) errno = verdict.error;
  const std::size_t share = verdict.share == 0 ? count : std::min(count, verdict.share);
  const ssize_t answer = verdict.error != 0 ? -1 : act(share);
  conclude(verdict, name, path, nullptr, answer >= 0);
  return answer;
}

template <typename Act>
int changeOpen(const char* name, int descriptor, Act act) {
  const char* const path = pathOf(descriptor);
  return path ? change(name, path, nullptr, act) : act();
}

template <typename Answer, typename Act>
Answer look(const char* name, const char* path, Answer onFailure, Act act) {
  const Verdict verdict = meet(Side::Looking, name, path);
  if (verdict.error == 0) return act();
  errno = verdict.error;
  return onFailure;
}

void remember(int descriptor, const char* path, bool written) {
  if (descriptor < 0 || descriptor >= kDescriptors || !report || !isInHome(path)) return;
  OpenFile& file = openFiles[descriptor];
  std::strncpy(file.path, path, kPathBytes - 1);
  file.written = written;
  file.known = true;
}

template <typename Act>
int openFile(int, const char* path, int flags, Act act) {
  const bool changes = (flags & (O_WRONLY | O_RDWR | O_CREAT | O_TRUNC)) != 0;
  const int descriptor = changes ? change("open", path, nullptr, act) : look("open", path, -1, act);
  const int error = errno;
  remember(descriptor, path, changes);
  errno = error;
  return descriptor;
}

bool sameFolder(const char* a, const char* b) {
  const char* const slashA = std::strrchr(a, '/');
  const char* const slashB = std::strrchr(b, '/');
  return slashA && slashB && slashA - a == slashB - b &&
         std::strncmp(a, b, static_cast<std::size_t>(slashA - a)) == 0;
}

// What the volume answers to a rename or link, or 0.
int volumeRefuses(const char* from, const char* to, bool exclusive, bool link) {
  if (!report || !isInHome(from)) return 0;
  switch (plan.volume) {
    case Volume::Plain:
      return 0;
    case Volume::Across:
      return sameFolder(from, to) ? 0 : EXDEV;
    case Volume::NoReplace:
      return exclusive ? EINVAL : 0;
    case Volume::NoLink:
      return exclusive ? EINVAL : link ? EPERM : 0;
  }
  return 0;
}

template <typename Act>
int moveFile(const char* name, const char* from, const char* to, bool exclusive, bool link, Act act) {
  if (renameWatcher) renameWatcher(from, to);
  return change(name, from, to, [&] {
    const int refusal = volumeRefuses(from, to, exclusive, link);
    if (refusal == 0) return act();
    errno = refusal;
    return -1;
  });
}

struct Start {
  void* (*run)(void*);
  void* argument;
  int number;
};

void* runNumbered(void* raw) {
  const Start start = *static_cast<Start*>(raw);
  delete static_cast<Start*>(raw);
  thisThread = start.number;
  return start.run(start.argument);
}

}  // namespace

void arm(const Plan& thePlan, const char* theHome, Report& theReport) {
  plan = thePlan;
  std::strncpy(home, theHome, sizeof home - 1);
  homeLength = std::strlen(home);
  report = &theReport;
}

void watchRenames(void (*watcher)(const char* from, const char* to)) {
  renameWatcher = watcher;
}

void note(const char* name, const char* path) {
  if (report) log(described(name, path, nullptr, kNote));
}

void say(const char* line) {
  const auto length = static_cast<std::uint32_t>(std::strlen(line));
  const std::uint32_t place = report->textLength.fetch_add(length + 1);
  if (place + length + 1 >= kTextBytes) return;
  std::memcpy(report->text.data() + place, line, length);
  report->text[place + length] = '\n';
}

std::uint32_t changes() {
  return report->total;
}

const char* nameOf(Kind kind) {
  switch (kind) {
    case Kind::None:
      return "none";
    case Kind::Kill:
      return "kill";
    case Kind::TornKill:
      return "torn-kill";
    case Kind::Once:
      return "once";
    case Kind::ForEver:
      return "for-ever";
    case Kind::Short:
      return "short";
    case Kind::OneByte:
      return "one-byte";
    case Kind::Terminate:
      return "terminate";
  }
  return "";
}

const char* nameOf(Volume volume) {
  switch (volume) {
    case Volume::Plain:
      return "plain";
    case Volume::Across:
      return "across-volumes";
    case Volume::NoReplace:
      return "no-exclusive-rename";
    case Volume::NoLink:
      return "no-link";
  }
  return "";
}

const char* nameOfError(int error) {
  return strerrorname_np(error);
}

}  // namespace ambrel::faults

using namespace ambrel::faults;
using ambrel::real;

extern "C" {

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument) {
  static const auto call =
      real<int (*)(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*)>("pthread_create");
  auto* const start = new (std::nothrow) Start{run, argument, ++lastThread};
  return start ? call(thread, attributes, runNumbered, start) : EAGAIN;
}

AMBREL_INTERPOSE_OPEN(open, openFile)
AMBREL_INTERPOSE_OPEN(open64, openFile)
AMBREL_INTERPOSE_OPENAT(openat, openFile)
AMBREL_INTERPOSE_OPENAT(openat64, openFile)

int close(int descriptor) {
  static const auto call = real<int (*)(int)>("close");
  const bool tracked = descriptor >= 0 && descriptor < kDescriptors && openFiles[descriptor].known;
  if (!tracked) return call(descriptor);
  OpenFile& file = openFiles[descriptor];
  file.known = false;
  if (!file.written) return call(descriptor);
  char path[kPathBytes];
  std::memcpy(path, file.path, sizeof path);
  // Also where it reports a failure, a descriptor is closed.
  const Verdict verdict = meet(Side::Changing, "close", path);
  const int answer = call(descriptor);
  if (verdict.error != 0) errno = verdict.error;
  conclude(verdict, "close", path, nullptr, verdict.error == 0);
  return verdict.error != 0 ? -1 : answer;
}

ssize_t write(int descriptor, const void* bytes, std::size_t count) {
  static const auto call = real<ssize_t (*)(int, const void*, std::size_t)>("write");
  return changeBytes("write", descriptor, count, [&](std::size_t n) { return call(descriptor, bytes, n); });
}

ssize_t pwrite(int descriptor, const void* bytes, std::size_t count, off_t offset) {
  static const auto call = real<ssize_t (*)(int, const void*, std::size_t, off_t)>("pwrite");
  return changeBytes("pwrite", descriptor, count,
                     [&](std::size_t n) { return call(descriptor, bytes, n, offset); });
}

ssize_t pwrite64(int descriptor, const void* bytes, std::size_t count, off_t offset) {
  return pwrite(descriptor, bytes, count, offset);
}

ssize_t writev(int descriptor, const iovec* pieces, int count) {
  static const auto call = real<ssize_t (*)(int, const iovec*, int)>("writev");
  return changeBytes("writev", descriptor, 0, [&](std::size_t) { return call(descriptor, pieces, count); });
}

ssize_t copy_file_range(int from, off_t* fromOffset, int to, off_t* toOffset, std::size_t count,
                        unsigned flags) {
  static const auto call =
      real<ssize_t (*)(int, off_t*, int, off_t*, std::size_t, unsigned)>("copy_file_range");
  struct stat status = {};
  // Half of what is asked for would be more than there is.
  if (pathOf(to) && fstat(from, &status) == 0) {
    count = std::min(count, static_cast<std::size_t>(std::max<off_t>(status.st_size, 1)));
  }
  return changeBytes("copy_range", to, count,
                     [&](std::size_t n) { return call(from, fromOffset, to, toOffset, n, flags); });
}

ssize_t sendfile(int to, int from, off_t* offset, std::size_t count) {
  static const auto call = real<ssize_t (*)(int, int, off_t*, std::size_t)>("sendfile");
  return changeBytes("sendfile", to, count, [&](std::size_t n) { return call(to, from, offset, n); });
}

ssize_t sendfile64(int to, int from, off_t* offset, std::size_t count) {
  return sendfile(to, from, offset, count);
}

int rename(const char* from, const char* to) {
  static const auto call = real<int (*)(const char*, const char*)>("rename");
  return moveFile("rename", from, to, false, false, [&] { return call(from, to); });
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) {
  static const auto call = real<int (*)(int, const char*, int, const char*, unsigned)>("renameat2");
  return moveFile("rename", from, to, flags != 0, false,
                  [&] { return call(fromFolder, from, toFolder, to, flags); });
}

int link(const char* from, const char* to) {
  static const auto call = real<int (*)(const char*, const char*)>("link");
  return moveFile("link", from, to, false, true, [&] { return call(from, to); });
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags) {
  static const auto call = real<int (*)(int, const char*, int, const char*, int)>("linkat");
  return moveFile("link", from, to, false, true, [&] { return call(fromFolder, from, toFolder, to, flags); });
}

int symlink(const char* target, const char* path) {
  static const auto call = real<int (*)(const char*, const char*)>("symlink");
  return change("symlink", path, nullptr, [&] { return call(target, path); });
}

int unlink(const char* path) {
  static const auto call = real<int (*)(const char*)>("unlink");
  return change("unlink", path, nullptr, [&] { return call(path); });
}

int unlinkat(int folder, const char* path, int flags) {
  static const auto call = real<int (*)(int, const char*, int)>("unlinkat");
  return change("unlink", path, nullptr, [&] { return call(folder, path, flags); });
}

int rmdir(const char* path) {
  static const auto call = real<int (*)(const char*)>("rmdir");
  return change("rmdir", path, nullptr, [&] { return call(path); });
}

int mkdir(const char* path, mode_t mode) {
  static const auto call = real<int (*)(const char*, mode_t)>("mkdir");
  return change("mkdir", path, nullptr, [&] { return call(path, mode); });
}

int mkdirat(int folder, const char* path, mode_t mode) {
  static const auto call = real<int (*)(int, const char*, mode_t)>("mkdirat");
  return change("mkdir", path, nullptr, [&] { return call(folder, path, mode); });
}

int chmod(const char* path, mode_t mode) {
  static const auto call = real<int (*)(const char*, mode_t)>("chmod");
  return change("chmod", path, nullptr, [&] { return call(path, mode); });
}

int fchmod(int descriptor, mode_t mode) {
  static const auto call = real<int (*)(int, mode_t)>("fchmod");
  return changeOpen("fchmod", descriptor, [&] { return call(descriptor, mode); });
}

int futimens(int descriptor, const timespec times[2]) {
  static const auto call = real<int (*)(int, const timespec*)>("futimens");
  return changeOpen("futimens", descriptor, [&] { return call(descriptor, times); });
}

int fsync(int descriptor) {
  static const auto call = real<int (*)(int)>("fsync");
  return changeOpen("fsync", descriptor, [&] { return call(descriptor); });
}

int fdatasync(int descriptor) {
  static const auto call = real<int (*)(int)>("fdatasync");
  return changeOpen("fdatasync", descriptor, [&] { return call(descriptor); });
}

int ftruncate(int descriptor, off_t length) {
  static const auto call = real<int (*)(int, off_t)>("ftruncate");
  return changeOpen("ftruncate", descriptor, [&] { return call(descriptor, length); });
}

int ftruncate64(int descriptor, off_t length) {
  return ftruncate(descriptor, length);
}

int truncate(const char* path, off_t length) {
  static const auto call = real<int (*)(const char*, off_t)>("truncate");
  return change("truncate", path, nullptr, [&] { return call(path, length); });
}

int fallocate(int descriptor, int mode, off_t offset, off_t length) {
  static const auto call = real<int (*)(int, int, off_t, off_t)>("fallocate");
  return changeOpen("fallocate", descriptor, [&] { return call(descriptor, mode, offset, length); });
}

// ---- Calls that look

int stat(const char* path, struct stat* status) {
  static const auto call = real<int (*)(const char*, struct stat*)>("stat");
  return look("stat", path, -1, [&] { return call(path, status); });
}

int lstat(const char* path, struct stat* status) {
  static const auto call = real<int (*)(const char*, struct stat*)>("lstat");
  return look("lstat", path, -1, [&] { return call(path, status); });
}

int stat64(const char* path, struct stat64* status) {
  static const auto call = real<int (*)(const char*, struct stat64*)>("stat64");
  return look("stat", path, -1, [&] { return call(path, status); });
}

int lstat64(const char* path, struct stat64* status) {
  static const auto call = real<int (*)(const char*, struct stat64*)>("lstat64");
  return look("lstat", path, -1, [&] { return call(path, status); });
}

int statx(int folder, const char* path, int flags, unsigned mask, struct statx* status) {
  static const auto call = real<int (*)(int, const char*, int, unsigned, struct statx*)>("statx");
  const bool open = path && *path == 0;
  return look("statx", open ? pathOf(folder) : path, -1,
              [&] { return call(folder, path, flags, mask, status); });
}

int access(const char* path, int mode) {
  static const auto call = real<int (*)(const char*, int)>("access");
  return look("access", path, -1, [&] { return call(path, mode); });
}

DIR* opendir(const char* path) {
  static const auto call = real<DIR* (*)(const char*)>("opendir");
  return look("opendir", path, static_cast<DIR*>(nullptr), [&] { return call(path); });
}

dirent* readdir(DIR* stream) {
  static const auto call = real<dirent* (*)(DIR*)>("readdir");
  const char* const path = pathOf(dirfd(stream));
  if (!path) return call(stream);
  return look("readdir", path, static_cast<dirent*>(nullptr), [&] { return call(stream); });
}

dirent64* readdir64(DIR* stream) {
  return reinterpret_cast<dirent64*>(readdir(stream));  // the same on a 64-bit system
}

int closedir(DIR* stream) {
  static const auto call = real<int (*)(DIR*)>("closedir");
  const int descriptor = dirfd(stream);
  if (descriptor >= 0 && descriptor < kDescriptors) openFiles[descriptor].known = false;
  return call(stream);
}

ssize_t read(int descriptor, void* bytes, std::size_t count) {
  static const auto call = real<ssize_t (*)(int, void*, std::size_t)>("read");
  const char* const path = pathOf(descriptor);
  if (!path) return call(descriptor, bytes, count);
  return look("read", path, static_cast<ssize_t>(-1), [&] { return call(descriptor, bytes, count); });
}

}  // extern "C"
