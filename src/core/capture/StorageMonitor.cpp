// SPDX-License-Identifier: Apache-2.0
#include "core/capture/StorageMonitor.h"

#include <array>
#include <utility>

namespace ambrel {
namespace {

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;
constexpr std::uint64_t kCriticalUpTo = 10 * kGiB;
constexpr std::uint64_t kLowUpTo = 50 * kGiB;
constexpr std::array kUnits = {"B", "KB", "MB", "GB", "TB", "PB"};

}  // namespace

StorageLevel storageLevel(const VolumeSpace& space) {
  if (space.free == 0 || space.total == 0) return StorageLevel::Unknown;
  if (space.free <= kCriticalUpTo) return StorageLevel::Critical;
  return space.free <= kLowUpTo ? StorageLevel::Low : StorageLevel::Healthy;
}

QString compactStorageString(quint64 bytes) {
  auto value = static_cast<double>(bytes);
  std::size_t unit = 0;
  while (value >= 1024 && unit + 1 < kUnits.size()) {
    value /= 1024;
    ++unit;
  }
  const int decimals = unit == 0 || value >= 100 ? 0 : 1;
  return QString::asprintf("%.*f %s", decimals, value, kUnits[unit]);
}

StorageMonitor::StorageMonitor(Clock& clock, Files& files, Operator& operatorSeam,
                               std::function<QString()> watchedPath)
    : _clock(clock), _files(files), _operator(operatorSeam), _watchedPath(std::move(watchedPath)) {}

void StorageMonitor::startTimer() {
  stopTimer();
  _storageTimer = _clock.callEvery(kPeriod, this, [this] { updateStorageLabel(); });
}

void StorageMonitor::stopTimer() {
  _clock.cancel(std::exchange(_storageTimer, Clock::kNoTimer));
}

void StorageMonitor::updateStorageLabel() {
  QMetaObject::invokeMethod(this, [this] { refresh(); });
}

void StorageMonitor::refresh() {
  const VolumeSpace space = _files.volumeSpace(_watchedPath());
  const StorageLevel level = storageLevel(space);
  const bool known = level != StorageLevel::Unknown;
  _reading = {level, known ? compactStorageString(space.free) : QStringLiteral("Unknown")};
  Q_EMIT refreshed();

  if (level == StorageLevel::Critical && !std::exchange(_lowLaptopStorageWarningShown, true)) {
    _operator.showAlert(QStringLiteral("Laptop Storage Critical"),
                        QStringLiteral("Available storage is at or below 10 GB. Free up space immediately or "
                                       "photos may fail to write."));
  } else if (known && level != StorageLevel::Critical) {
    _lowLaptopStorageWarningShown = false;
  }
}

}  // namespace ambrel
