// SPDX-License-Identifier: Apache-2.0
#include "support/ScratchFolder.h"

#include <QFile>
#include <array>
#include <chrono>
#include <fcntl.h>
#include <filesystem>
#include <signal.h>
#include <string>
#include <sys/statvfs.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

#include "support/Goals.h"

namespace ambrel::bench {
namespace {

constexpr const char* kMemory = "/dev/shm";
constexpr quint64 kBytesOfName = 1'500;  // with the file, which holds next to nothing
// Programs that end with this one may still be writing.
constexpr int kAttempts = 100;
constexpr std::chrono::milliseconds kBetweenAttempts{100};

std::filesystem::path parentFor(ScratchFolder::Place place) {
  if (place == ScratchFolder::Place::Memory) return kMemory;
  return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

void removeWhole(const std::filesystem::path& folder) {
  std::error_code error;
  for (int attempt = 0; attempt < kAttempts && std::filesystem::exists(folder, error); ++attempt) {
    if (attempt > 0) std::this_thread::sleep_for(kBetweenAttempts);
    std::filesystem::remove_all(folder, error);
  }
}

// Ends when nobody has the other end of the life line any more; no signal ends it before.
[[noreturn]] void guard(const std::filesystem::path& folder, int lifeLine) {
  ::setsid();
  for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
    ::signal(signal, SIG_IGN);
  // Nobody who waits for the end of what the benchmark had open is to wait for this process.
  ::dup2(lifeLine, STDIN_FILENO);
  ::close_range(STDIN_FILENO + 1, ~0U, 0);
  char byte = 0;
  while (::read(STDIN_FILENO, &byte, 1) < 0 && errno == EINTR) {
  }
  removeWhole(folder);
  ::_exit(0);
}

}  // namespace

ScratchFolder::ScratchFolder(Place place) {
  std::string name = parentFor(place) / (std::string(program_invocation_short_name) + "-XXXXXX");
  require(::mkdtemp(name.data()) != nullptr, "no folder");
  _path = QFile::decodeName(name.c_str());
  std::array<int, 2> ends{};
  require(::pipe2(ends.data(), O_CLOEXEC) == 0, "no pipe");
  _guard = ::fork();
  require(_guard >= 0, "no process to look after the folder");
  if (_guard == 0) guard(name, ends[0]);
  ::close(ends[0]);
  _lifeLine = ends[1];
}

ScratchFolder::~ScratchFolder() {
  ::close(_lifeLine);
  while (::waitpid(_guard, nullptr, 0) < 0 && errno == EINTR) {
  }
}

bool ScratchFolder::memoryHasRoom(qint64 names) {
  struct statvfs status = {};
  if (::statvfs(kMemory, &status) != 0 || ::access(kMemory, W_OK) != 0) return false;
  const auto wanted = static_cast<quint64>(names);
  return status.f_favail > wanted && status.f_bavail * status.f_frsize > wanted * kBytesOfName;
}

}  // namespace ambrel::bench
