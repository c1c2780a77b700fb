// SPDX-License-Identifier: Apache-2.0
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include "support/Goals.h"
#include "support/SimulatedCamera.h"
#include "support/TemporaryFolder.h"
#include "support/WorkerProcess.h"

extern char** environ;

namespace {

using namespace ambrel;
using std::chrono::milliseconds;

constexpr int kShots = 11;
constexpr double kMostTimesPeer = 1.05;
constexpr double kMostIdlePercent = 2.0;
constexpr milliseconds kIdleMeasured{5000};

// Both programs look for photos in turns. Photos at ever other points of a turn show them as they are.
void pauseBeforeShot(int shot) {
  std::this_thread::sleep_for(milliseconds(300 + 37 * (shot % 11)));
}

void shoot(SimulatedCamera& camera, std::size_t bytes) {
  camera.command("shoot n=1 kind=jpeg size=" + std::to_string(bytes));
}

// Percent of a core that a process needs while nothing is asked of it.
double idlePercent(pid_t pid) {
  const auto nanoseconds = [pid] {
    std::ifstream schedule("/proc/" + std::to_string(pid) + "/schedstat");
    double spent = 0;
    schedule >> spent;
    return spent;
  };
  const double before = nanoseconds();
  std::this_thread::sleep_for(kIdleMeasured);
  return (nanoseconds() - before) / 1e4 / static_cast<double>(kIdleMeasured.count());
}

// gphoto2 in tethered capture, keeping the photos on the card as the worker does.
class Peer {
 public:
  explicit Peer(const SimulatedCamera& camera) {
    const std::string command = "cd '" + _folder.path() + "' && HOME='" + _folder.path() +
                                "' exec gphoto2 --quiet --camera 'PTP/IP Camera' --port " +
                                camera.gphotoPort() +
                                " --set-config capturetarget=1 --keep --force-overwrite --capture-tethered"
                                " >/dev/null 2>&1 </dev/null";
    std::vector<std::string> words{"/bin/sh", "-c", command};
    std::vector<char*> pointers{words[0].data(), words[1].data(), words[2].data(), nullptr};
    bench::require(posix_spawn(&_pid, "/bin/sh", nullptr, nullptr, pointers.data(), environ) == 0,
                   "gphoto2 cannot be started");
  }
  ~Peer() {
    kill(_pid, SIGINT);
    while (waitpid(_pid, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  pid_t pid() const { return _pid; }
  // False when the photo does not come in time.
  bool waitFor(const SimulatedPhoto& photo, milliseconds patience) const {
    const auto until = std::chrono::steady_clock::now() + patience;
    std::error_code error;
    while (std::filesystem::file_size(_folder.file(photo.name), error) != photo.size || error) {
      if (std::chrono::steady_clock::now() > until) return false;
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
  }

 private:
  test::TemporaryFolder _folder;
  pid_t _pid = -1;
};

std::vector<double> ourTimes(SimulatedCamera& camera, WorkerProcess& worker, std::size_t bytes) {
  std::vector<double> times;
  for (int shot = 0; shot < kShots; ++shot) {
    pauseBeforeShot(shot);
    shoot(camera, bytes);
    times.push_back(bench::millisecondsOf([&] { worker.waitFor("DOWNLOADED|"); }));
  }
  return times;
}

std::vector<double> peerTimes(SimulatedCamera& camera, const Peer& peer, std::size_t bytes) {
  std::vector<double> times;
  for (int shot = 0; shot < kShots; ++shot) {
    pauseBeforeShot(shot);
    // The names go on by one, so that this one is known before it is asked for.
    SimulatedPhoto photo = camera.photos().back();
    const unsigned number = photo.shot + 1;
    photo.size = bytes;
    photo.name =
        "IMG_" + std::string(4 - std::to_string(number).size(), '0') + std::to_string(number) + ".JPG";
    shoot(camera, bytes);
    times.push_back(bench::millisecondsOf(
        [&] { bench::require(peer.waitFor(photo, milliseconds(20000)), "gphoto2 saved no photo"); }));
  }
  return times;
}

void waitUntilPeerWatches(SimulatedCamera& camera, const Peer& peer) {
  for (int attempt = 0; attempt < 10; ++attempt) {
    shoot(camera, 50'000);
    if (peer.waitFor(camera.photos().back(), milliseconds(1000))) return;
  }
  bench::require(false, "gphoto2 does not watch the camera");
}

int measure() {
  bench::Goals goals;
  SimulatedCamera camera;
  const std::vector<std::size_t> sizes{1'000'000, 10'000'000, 30'000'000};
  std::vector<bench::Sample> ours;
  double idle = 0;
  double watching = 0;
  double resting = 0;
  {
    const test::TemporaryFolder folder;
    WorkerProcess worker({folder.path(), camera.gphotoPort()});
    worker.connect();
    idle = idlePercent(worker.pid());
    worker.watch();
    watching = idlePercent(worker.pid());
    resting = idlePercent(worker.pid());
    for (const std::size_t size : sizes)
      ours.emplace_back(ourTimes(camera, worker, size));
  }
  const Peer peer(camera);
  waitUntilPeerWatches(camera, peer);
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    const std::string what = "photo of " + std::to_string(sizes[i] / 1'000'000) + " MB, announced to saved";
    goals.atMostTimes(what, ours[i], "gphoto2", peerTimes(camera, peer, sizes[i]), kMostTimesPeer);
  }
  goals.atMost("idle, percent of a core", idle, kMostIdlePercent, "% ");
  goals.atMost("watching and no photo, percent of a core", resting, kMostIdlePercent, "% ");
  goals.mention("  in the first five seconds", watching, "% ");
  goals.mention("gphoto2 watching and no photo", idlePercent(peer.pid()), "% ");
  return goals.exitCode();
}

}  // namespace

int main() {
  try {
    return measure();
  } catch (const std::runtime_error& error) {
    bench::require(false, error.what());
  }
  return EXIT_FAILURE;
}
