// SPDX-License-Identifier: Apache-2.0
#include "soak/Troublemaker.h"

#include <QDir>
#include <QFileInfo>
#include <array>
#include <csignal>
#include <string>
#include <utility>

namespace ambrel::soak {
namespace {

constexpr unsigned kMostBytesBeforeACut = 100'000;

std::string cutOf(unsigned choice, std::initializer_list<const char*> ways) {
  return " after=" + std::to_string(choice % kMostBytesBeforeACut) +
         " how=" + *(ways.begin() + choice % ways.size());
}

}  // namespace

Troublemaker::Troublemaker(const Places& places, const DriveMode& drive, Shutter& shutter,
                           LiveApplication& live)
    : _places(places), _drive(drive), _shutter(shutter), _live(live) {
  setDrive("ok");
}

bool Troublemaker::concernsCamera(Mishap mishap) {
  return mishap <= Mishap::TargetStale;
}

bool Troublemaker::concernsData(Mishap mishap) {
  return mishap >= Mishap::DataFull && mishap <= Mishap::DataStale;
}

void Troublemaker::setDrive(const QByteArray& mode, const QString& folder) {
  if (!_drive.set(mode, folder))
    _wrong << QStringLiteral("The drive cannot be told to be \"%1\".").arg(QString::fromLatin1(mode));
}

// One that has ended bears its process id until the link has taken note of the end.
void Troublemaker::signalWorker(int number) {
  const qint64 worker = _live.link ? _live.link->processId() : 0;
  if (worker > 0) ::kill(static_cast<pid_t>(worker), number);
}

void Troublemaker::begin(const Fault& fault) {
  switch (fault.mishap) {
    case Mishap::WorkerKilled:
      return signalWorker(SIGKILL);
    case Mishap::WorkerStopped:
      _stoppedWorker = _live.link ? _live.link->processId() : 0;
      return signalWorker(SIGSTOP);
    case Mishap::CablePulled:
      return _shutter.tell("cable in=0" + cutOf(fault.choice, {"close", "reset", "freeze"}));
    case Mishap::ConnectionDropped:
      return _shutter.tell("drop" + cutOf(fault.choice, {"close", "reset"}));
    case Mishap::CameraOff:
      return _shutter.tell("power on=0");
    case Mishap::CardOut:
      return _shutter.tell("card in=0");
    case Mishap::TargetFull:
      return setDrive("full", _places.target);
    case Mishap::TargetNearlyFull:
      return setDrive("nearly", _places.target);
    case Mishap::TargetFailing:
      return setDrive("error", _places.target);
    case Mishap::TargetStale:
      return setDrive("stale", _places.target);
    case Mishap::DataFull:
      return setDrive("full", dataFolder());
    case Mishap::DataFailing:
      return setDrive("error", dataFolder());
    case Mishap::DataStale:
      return setDrive("stale", dataFolder());
    case Mishap::BackupAway:
      if (!QDir().rename(_places.copies, _places.copies + QStringLiteral(".away")))
        _wrong << QStringLiteral("The backup folder cannot be moved away.");
      return;
    case Mishap::BackupGone:
      return setDrive("gone", _places.copies);
    case Mishap::BackupHangs:
      return setDrive("hang", _places.copies);
    case Mishap::BackupFull:
      return setDrive("full", _places.copies);
    case Mishap::BackupFailing:
      return setDrive("error", _places.copies);
    case Mishap::BackupStale:
      return setDrive("stale", _places.copies);
  }
}

void Troublemaker::end(const Fault& fault) {
  switch (fault.mishap) {
    case Mishap::WorkerKilled:
    case Mishap::ConnectionDropped:
      return;
    case Mishap::WorkerStopped:
      if (_live.link && _live.link->processId() == _stoppedWorker) signalWorker(SIGCONT);
      return;
    case Mishap::CablePulled:
      return _shutter.tell("cable in=1");
    case Mishap::CameraOff:
      return _shutter.tell("power on=1");
    case Mishap::CardOut:
      return _shutter.tell("card in=1");
    case Mishap::BackupAway:
      if (QFileInfo::exists(_places.copies)) {
        _wrong << QStringLiteral("The backup folder was made anew while its drive was away.");
      } else if (!QDir().rename(_places.copies + QStringLiteral(".away"), _places.copies)) {
        _wrong << QStringLiteral("The backup folder cannot be moved back.");
      }
      return;
    default:
      return setDrive("ok");
  }
}

}  // namespace ambrel::soak
