// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QElapsedTimer>
#include <QFile>
#include <QObject>
#include <array>
#include <memory>

#include "soak/Account.h"
#include "soak/Hands.h"
#include "soak/Meter.h"
#include "soak/Plan.h"
#include "soak/Shutter.h"
#include "soak/Troublemaker.h"
#include "support/DriveMode.h"
#include "support/EventLoop.h"
#include "support/LiveApplication.h"

namespace ambrel::soak {

// Runs a plan: the photographer, the operator, bad luck and the clock, with the application in the middle;
// and then looks whether everything is there.
class Day {
 public:
  Day(const Plan& plan, std::uint64_t seed, const Places& places, const DriveMode& drive);

  // Everything that is wrong at the end, one sentence each.
  QStringList run();
  QStringList table() const;
  std::size_t photos() const { return _shutter.taken(); }
  std::size_t faults() const { return _faultsBegun + _restartsDone; }

 private:
  using milliseconds = std::chrono::milliseconds;

  // The day
  void open();
  void tick();
  void shoot();
  void beginBurst();
  void performActions();
  void makeTrouble();
  void watchTrouble();
  void troubleBegins();
  bool mayQuit() const;
  void restart();
  bool isOver() const;
  // The evening
  void converge();
  void packUp();
  void takeStock();
  void judgeMeasures();

  // The application, also after a restart
  void listen();
  void startApplication();
  void quitApplication();
  void compareStore(const std::vector<Row>& rows);
  void checkQueueFile();
  void watchEventLoop();
  void workerSaid(const QByteArray& line);

  milliseconds now() const { return milliseconds(_clock.elapsed()); }
  bool waitUntil(const std::function<bool()>& done, std::chrono::seconds limit);
  bool isWatched() const { return _watched && _live.app && _live.app->isWatching(); }
  bool hasComeToRest() const;
  void note(const QString& line);
  void wrong(const QString& sentence);
  void showProgress();

  const Plan _plan;
  const Places& _places;
  EarlierFiles _earlier;
  Shutter _shutter;
  LiveApplication _live;
  Troublemaker _troublemaker;
  Hands _hands;
  Meter _meter;
  std::unique_ptr<Heartbeat> _heartbeat;  // while an application runs
  QElapsedTimer _clock;
  QFile _diary;
  QStringList _wrong;
  std::unique_ptr<Account> _account;

  // How far the plan has come
  std::size_t _nextBurst = 0;
  std::size_t _nextAction = 0;
  std::size_t _nextFault = 0;
  std::size_t _nextRestart = 0;
  std::size_t _filesOrdered = 0;
  std::size_t _shotsLeft = 0;  // of the burst that is being shot
  std::size_t _nextShot = 0;
  milliseconds _shotDue{0};
  bool _faultRuns = false;
  bool _holdFire = false;  // until the fault is over
  milliseconds _faultEnds{0};
  bool _dataFaultRuns = false;
  bool _savedSince = true;  // since the data folder failed
  milliseconds _dataFaultEnded{0};
  milliseconds _calmSince{-1};  // -1: not calm

  // What is heard
  bool _watched = false;
  std::size_t _reported = 0;
  std::size_t _filed = 0;
  std::size_t _notFiled = 0;
  std::size_t _workerErrors = 0;
  std::size_t _alerts = 0;
  std::size_t _moved = 0;    // photos, to another person
  std::size_t _renamed = 0;  // with their folder
  int _filingsOpen = 0;
  std::size_t _filingsCutShort = 0;  // by quitting
  std::size_t _storesCompared = 0;
  bool _missingKnown = false;
  std::size_t _lossesBeside = 0;
  std::size_t _faultsBegun = 0;
  std::size_t _restartsDone = 0;
  std::array<std::size_t, kMishaps> _mishaps{};
  qint64 _backedUpBefore = 0;  // by earlier applications of the day
  int _descriptorsAtFirst = 0;
  int _descriptorsAtLast = 0;
  int _workerDescriptorsAtFirst = 0;
  int _workerDescriptorsAtLast = 0;
  milliseconds _shootingTime{0};
  milliseconds _longestGap{0};
  QString _longestGapDuring;
  QString _lastStep;
  milliseconds _longestQuit{0};
  milliseconds _convergence{0};
  milliseconds _nextProgress{0};
};

}  // namespace ambrel::soak
