// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <chrono>
#include <cstdint>
#include <vector>

// What happens on a day of shooting that is pressed into minutes. The same seed and length give the same
// plan.
namespace ambrel::soak {

enum class ShotKind : std::uint8_t { Jpeg, Raw, Pair };

// No two photos of a day have the same size, as it is with real ones: the backup tells them apart by it.
struct Shot {
  ShotKind kind = ShotKind::Jpeg;
  int size = 0;  // bytes; the raw file of a pair has kRawSurplus more
  bool operator==(const Shot&) const = default;
};
constexpr int kSmallestPhoto = 20'000;
constexpr int kBetweenSizes = 16;
constexpr int kRawSurplus = 8;
// The place in Plan::shots of the shot with a photo of this size.
constexpr std::size_t shotOfSize(std::size_t size) {
  return (size - kSmallestPhoto) / kBetweenSizes;
}

constexpr int kPersons = 600;  // in the list in the morning

struct Burst {
  int person = 0;  // a row of the list, modulo its length
  std::size_t firstShot = 0;
  std::size_t shots = 0;
  bool operator==(const Burst&) const = default;
};

// What the operator does between two bursts.
enum class Act : std::uint8_t {
  ToggleTag,
  EditNote,
  SetCounter,
  InsertRow,
  DeleteRow,
  ReorderRow,
  PasteRows,
  ToggleMarker,
  Search,
  CycleFilter,
  CycleSort,
  MovePhotos,
  RenameFolder,
  SaveToDisk,
  SaveToCard,
  SaveToBoth,
  Reconnect,
  ExportList,
  RetryBackup,
  BackUpMissing
};
constexpr std::size_t kActs = 20;

struct Action {
  std::size_t beforeBurst = 0;
  Act act = Act::ToggleTag;
  unsigned choice = 0;  // of whatever there is to choose
  bool operator==(const Action&) const = default;
};

// What goes wrong for a while.
enum class Mishap : std::uint8_t {
  WorkerKilled,
  WorkerStopped,
  CablePulled,
  ConnectionDropped,
  CameraOff,
  CardOut,
  TargetFull,
  TargetNearlyFull,
  TargetFailing,
  TargetStale,
  DataFull,
  DataFailing,
  DataStale,
  BackupAway,
  BackupGone,
  BackupHangs,
  BackupFull,
  BackupFailing,
  BackupStale
};
constexpr std::size_t kMishaps = 19;

struct Fault {
  std::chrono::milliseconds at{0};
  std::chrono::milliseconds lasts{0};
  Mishap mishap = Mishap::WorkerKilled;
  unsigned choice = 0;
  bool operator==(const Fault&) const = default;
};

struct Plan {
  std::chrono::milliseconds length{0};
  std::vector<Shot> shots;
  std::vector<Burst> bursts;
  std::vector<Action> actions;                      // in the order of the bursts
  std::vector<Fault> faults;                        // one after the other
  std::vector<std::chrono::milliseconds> restarts;  // of the application
  std::size_t photos = 0;                           // files; a pair has two

  // Of the day that it presses together.
  double hours() const;
  bool operator==(const Plan&) const = default;
};

// In eight hours.
constexpr std::size_t kMostPhotos = 3000;
constexpr double kHoursOfADay = 8;

Plan makePlan(double minutes, std::uint64_t seed);
QStringList linesOf(const Plan& plan);
QString nameOf(Act act);
QString nameOf(Mishap mishap);

}  // namespace ambrel::soak
