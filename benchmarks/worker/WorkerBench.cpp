// SPDX-License-Identifier: Apache-2.0
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/Benchmark.h"
#include "support/SimulatedCamera.h"
#include "support/TetheredGphoto2.h"
#include "support/WorkerProcess.h"

namespace ambrel::bench {
namespace {

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

class Peer {
 public:
  Peer(const SimulatedCamera& camera, const QString& folder)
      : _folder(folder.toStdString()), _gphoto2(camera.gphotoPort(), folder, {"--force-overwrite"}) {}

  pid_t pid() const { return _gphoto2.pid(); }
  // False when the photo does not come in time.
  bool waitFor(const SimulatedPhoto& photo, milliseconds patience) const {
    const auto until = std::chrono::steady_clock::now() + patience;
    std::error_code error;
    while (std::filesystem::file_size(_folder / photo.name, error) != photo.size || error) {
      if (std::chrono::steady_clock::now() > until) return false;
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
  }

 private:
  const std::filesystem::path _folder;
  const TetheredGphoto2 _gphoto2;
};

std::vector<double> ourTimes(SimulatedCamera& camera, WorkerProcess& worker, std::size_t bytes) {
  std::vector<double> times;
  for (int shot = 0; shot < kShots; ++shot) {
    pauseBeforeShot(shot);
    shoot(camera, bytes);
    times.push_back(millisecondsOf([&] { worker.waitFor("DOWNLOADED|"); }));
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
    times.push_back(
        millisecondsOf([&] { require(peer.waitFor(photo, milliseconds(20000)), "gphoto2 saved no photo"); }));
  }
  return times;
}

void waitUntilPeerWatches(SimulatedCamera& camera, const Peer& peer) {
  for (int attempt = 0; attempt < 10; ++attempt) {
    shoot(camera, 50'000);
    if (peer.waitFor(camera.photos().back(), milliseconds(1000))) return;
  }
  require(false, "gphoto2 does not watch the camera");
}

void measureWorkers(Goals& goals, const QString& folder) {
  SimulatedCamera camera;
  const std::vector<std::size_t> sizes{1'000'000, 10'000'000, 30'000'000};
  std::vector<Sample> ours;
  double idle = 0;
  double watching = 0;
  double resting = 0;
  {
    const std::string photos = folder.toStdString() + "/ours";
    require(std::filesystem::create_directory(photos), "no folder");
    WorkerProcess worker({photos, camera.gphotoPort()});
    worker.connect();
    idle = idlePercent(worker.pid());
    worker.watch();
    watching = idlePercent(worker.pid());
    resting = idlePercent(worker.pid());
    for (const std::size_t size : sizes)
      ours.emplace_back(ourTimes(camera, worker, size));
  }
  const Peer peer(camera, folder + "/peer");
  waitUntilPeerWatches(camera, peer);
  for (std::size_t i = 0; i < sizes.size(); ++i) {
    const std::string what = "photo of " + std::to_string(sizes[i] / 1'000'000) + " MB, announced to saved";
    goals.atMostTimes(what, ours[i], "gphoto2", peerTimes(camera, peer, sizes[i]), kMostTimesPeer);
  }
  goals.atMost("idle, percent of a core", idle, kMostIdlePercent, "% ");
  goals.atMost("watching and no photo, percent of a core", resting, kMostIdlePercent, "% ");
  goals.mention("  in the first five seconds", watching, "% ");
  goals.mention("gphoto2 watching and no photo", idlePercent(peer.pid()), "% ");
}

void measure(Goals& goals, const QString& folder) {
  try {
    measureWorkers(goals, folder);
  } catch (const std::runtime_error& error) {
    require(false, error.what());
  }
}

}  // namespace
}  // namespace ambrel::bench

int main(int argc, char** argv) {
  return ambrel::bench::runBenchmark(argc, argv, ambrel::bench::measure);
}
