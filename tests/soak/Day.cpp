// SPDX-License-Identifier: Apache-2.0
#include "soak/Day.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <algorithm>

namespace ambrel::soak {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr int kPersonsOfLastYear = 12;
constexpr milliseconds kBetweenShots{100};
// Of the length: then everything shall be shot.
constexpr double kShootingUntil = 0.95;
// A photographer waits for the camera to catch up.
constexpr std::size_t kMostOnTheirWay = 15;
// After the camera has come back photos count again.
constexpr milliseconds kUntilCalm{3000};
constexpr seconds kPatience{90};
constexpr seconds kUntilSavedAgain{25};

QStringList names() {
  static const char* const kFirst[] = {"Anna",    "José",     "Zoë",    "Mei 美",
                                       "O'Neill", "Lars-Åke", "Ida: B", "Τάσος"};
  QStringList names;
  for (int person = 0; person < kPersons; ++person)
    names << QString::fromUtf8(kFirst[person % 8]) +
                 QStringLiteral(" %1").arg(person, 3, 10, QLatin1Char('0'));
  return names;
}

}  // namespace

Day::Day(const Plan& plan, std::uint64_t seed, const Places& places, const DriveMode& drive)
    : _plan(plan),
      _places(places),
      _shutter(seed, plan.shots.size()),
      _live(places.home),
      _troublemaker(places, drive, _shutter, _live),
      _hands(places, _live),
      _meter(plan.length, plan.hours()),
      _diary(places.root + QStringLiteral("/diary")) {
  if (!_diary.open(QIODevice::WriteOnly)) wrong(QStringLiteral("The diary cannot be written."));
  _clock.start();
}

QStringList Day::run() {
  open();
  _clock.start();
  if (_wrong.isEmpty()) {
    const milliseconds tooLong = 3 * _plan.length + kPatience;
    while (!isOver() && now() < tooLong) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
      tick();
    }
    if (!isOver()) wrong(QStringLiteral("The day never ended."));
    converge();
    takeStock();
    judgeMeasures();
  }
  _wrong += _shutter.wrong() + _troublemaker.wrong();
  return _wrong;
}

void Day::open() {
  const QStringList persons = names();
  for (int person = 0; person < kPersonsOfLastYear; ++person) {
    // As the application would name their folders.
    if (!persons[person].contains(QLatin1Char(':'))) _earlier.plant(_places, {persons[person]});
  }
  qputenv("AMBREL_CAMERA_PORT", QByteArray::fromStdString(_shutter.gphotoPort()));
  startApplication();
  if (!_wrong.isEmpty()) return;
  _live.operatorSeam.willAnswer(Answer{0, {"FR", "_FR", "SS", "_SS", "", "", "", "", "", ""}});
  _live.app->tags().manageSuffixes();
  _live.importNames(_places.root + QStringLiteral("/names.csv"), persons);
  _live.chooseTarget(_places.target);
  _live.chooseBackup(_places.copies);
  _live.app->connectCameraManual();
  if (!waitUntil([this] { return isWatched(); }, kPatience))
    return wrong(QStringLiteral("The camera is never watched."));
  // Files that are open for a moment do not count.
  const auto worker = static_cast<pid_t>(_live.link->processId());
  _descriptorsAtFirst = Meter::descriptors();
  _workerDescriptorsAtFirst = Meter::descriptors(worker);
  const auto takeLess = [this, worker] {
    _descriptorsAtFirst = std::min(_descriptorsAtFirst, Meter::descriptors());
    _workerDescriptorsAtFirst = std::min(_workerDescriptorsAtFirst, Meter::descriptors(worker));
    return false;
  };
  (void)waitUntil(takeLess, seconds(1));
}

bool Day::isOver() const {
  const bool allShot =
      _nextBurst == _plan.bursts.size() && _shotsLeft == 0 && _nextAction == _plan.actions.size();
  return allShot && _nextFault == _plan.faults.size() && !_faultRuns && _nextRestart == _plan.restarts.size();
}

void Day::tick() {
  _meter.tick(static_cast<pid_t>(_live.link->processId()));
  for (const ScriptedOperator::Alert& alert : _live.operatorSeam.alerts) {
    ++_alerts;
    note(QStringLiteral("alert ") + alert.title + QStringLiteral(": ") + alert.message.simplified());
  }
  _live.operatorSeam.alerts.clear();
  _live.operatorSeam.questions.clear();
  _live.operatorSeam.requests.clear();
  watchEventLoop();
  watchTrouble();
  makeTrouble();
  shoot();
  if (_nextRestart < _plan.restarts.size() && now() >= _plan.restarts[_nextRestart] && mayQuit()) restart();
  if (now() >= _nextProgress) showProgress();
}

// ---- Shooting

void Day::shoot() {
  if (!isWatched() || _holdFire) return;
  if (_shotsLeft > 0) {
    if (now() < _shotDue) return;
    _shutter.press(_plan.shots[_nextShot++]);
    --_shotsLeft;
    _shotDue = now() + kBetweenShots;
    return;
  }
  if (_shutter.onTheirWay() > kMostOnTheirWay) return;
  const double share =
      static_cast<double>(now().count()) / (kShootingUntil * static_cast<double>(_plan.length.count()));
  if (_nextBurst < _plan.bursts.size() &&
      static_cast<double>(_filesOrdered) > share * static_cast<double>(_plan.photos))
    return;
  performActions();
  if (isWatched() && _nextBurst < _plan.bursts.size()) beginBurst();
}

void Day::beginBurst() {
  const Burst& burst = _plan.bursts[_nextBurst++];
  _lastStep = QStringLiteral("burst %1").arg(_nextBurst);
  _hands.select(burst.person);
  _shotsLeft = burst.shots;
  _nextShot = burst.firstShot;
  _shotDue = now();
  _filesOrdered += burst.shots * (_plan.shots[burst.firstShot].kind == ShotKind::Pair ? 2 : 1);
}

// What concerns a person concerns the one who was photographed last.
void Day::performActions() {
  const int person = _plan.bursts[_nextBurst == 0 ? 0 : _nextBurst - 1].person;
  const std::size_t until = _nextBurst == _plan.bursts.size() ? _plan.actions.size() : _nextBurst;
  while (_nextAction < _plan.actions.size() && isWatched()) {
    const Action& action = _plan.actions[_nextAction];
    if (action.beforeBurst > until) return;
    ++_nextAction;
    _lastStep = nameOf(action.act);
    note(_lastStep);
    if (Hands::reconnects(action.act)) {
      troubleBegins();
      _watched = false;
    }
    _hands.perform(action, person);
    if (!_live.operatorSeam.scriptUsedUp())
      wrong(QStringLiteral("The operator was not asked when it was to ") + _lastStep);
  }
}

// ---- What goes wrong

void Day::troubleBegins() {
  _shutter.troubleBegins();
  _calmSince = milliseconds(-1);
}

void Day::makeTrouble() {
  if (_faultRuns) {
    if (now() < _faultEnds) return;
    const Fault& fault = _plan.faults[_nextFault++];
    _faultRuns = false;
    _holdFire = false;
    note(QStringLiteral("over: ") + nameOf(fault.mishap));
    if (_dataFaultRuns) _dataFaultEnded = now();
    _dataFaultRuns = false;
    return _troublemaker.end(fault);
  }
  if (_nextFault == _plan.faults.size() || now() < _plan.faults[_nextFault].at) return;
  const Fault& fault = _plan.faults[_nextFault];
  // In the middle of a transfer, if that comes soon.
  const bool needsPhotos = fault.mishap <= Mishap::ConnectionDropped;
  if (needsPhotos && _shutter.onTheirWay() == 0 && now() < fault.at + fault.lasts / 2) return;
  _faultRuns = true;
  _faultEnds = now() + fault.lasts;
  ++_faultsBegun;
  ++_mishaps[static_cast<std::size_t>(fault.mishap)];
  note(nameOf(fault.mishap));
  if (Troublemaker::concernsCamera(fault.mishap)) troubleBegins();
  if (Troublemaker::concernsData(fault.mishap)) {
    _dataFaultRuns = true;
    _savedSince = false;
  }
  _troublemaker.begin(fault);
}

void Day::watchTrouble() {
  if (!_live.app->isWatching()) _watched = false;
  if (!_shutter.inTrouble()) {
    if (isWatched()) return;
    ++_lossesBeside;
    note(QStringLiteral("the camera is lost, and nobody did it"));
    return troubleBegins();
  }
  const bool cameraFault = _faultRuns && Troublemaker::concernsCamera(_plan.faults[_nextFault].mishap);
  const bool calm = isWatched() && !cameraFault && !_hands.savesToCardAlone() && _shutter.isIdle();
  if (!calm) {
    _calmSince = milliseconds(-1);
  } else if (_calmSince.count() < 0) {
    _calmSince = now();
  } else if (now() - _calmSince > kUntilCalm) {
    _shutter.troubleEnds();
  }
}

// While the data folder fails nobody could remember what waits for its backup; once it works again, the next
// photo or the next attempt saves that.
bool Day::mayQuit() const {
  const bool saved = _savedSince || now() - _dataFaultEnded > kUntilSavedAgain;
  return !_dataFaultRuns && saved;
}

void Day::restart() {
  ++_nextRestart;
  ++_restartsDone;
  note(QStringLiteral("restart"));
  troubleBegins();
  quitApplication();
  startApplication();
}

// ---- The evening

bool Day::waitUntil(const std::function<bool()>& done, seconds limit) {
  const QDeadlineTimer deadline(limit);
  while (!done()) {
    if (deadline.hasExpired()) return false;
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (!_live.app->isWatching()) _watched = false;
    _meter.tick(static_cast<pid_t>(_live.link->processId()));
    watchEventLoop();
  }
  return true;
}

bool Day::hasComeToRest() const {
  const Backup& backup = _live.app->backup();
  return isWatched() && _shutter.isIdle() && _shutter.onTheirWay() == 0 && _filingsOpen == 0 &&
         backup.queue().isEmpty() && !backup.state().busy;
}

void Day::converge() {
  note(QStringLiteral("evening"));
  _shootingTime = now();
  if (!waitUntil([this] { return hasComeToRest(); }, kPatience)) {
    wrong(QStringLiteral(
              "Once the faults were gone things did not go on: camera %1watched, %2 photos on their way, "
              "%3 being filed, %4 waiting for their backup.")
              .arg(isWatched() ? QString() : QStringLiteral("not "))
              .arg(_shutter.onTheirWay())
              .arg(_filingsOpen)
              .arg(_live.app->backup().queue().size()));
  }
  _convergence = now() - _shootingTime;
  const auto asAtFirst = [this] {
    // Each application that has quit has left its lock, which is held until the process ends.
    _descriptorsAtLast = Meter::descriptors() - static_cast<int>(_restartsDone);
    _workerDescriptorsAtLast = Meter::descriptors(static_cast<pid_t>(_live.link->processId()));
    return _descriptorsAtLast == _descriptorsAtFirst && _workerDescriptorsAtLast == _workerDescriptorsAtFirst;
  };
  (void)waitUntil(asAtFirst, kPatience);
  watchEventLoop();
  _heartbeat.reset();
  _meter.stop();
}

// A photo of which nobody expects that it arrives may be on its way even now, and would come between two
// looks at the folders.
void Day::packUp() {
  _live.app->disconnectCamera();
  const auto lastOneIsFiled = [this] {
    const Backup& backup = _live.app->backup();
    return !_live.link->isRunning() && _filingsOpen == 0 && backup.queue().isEmpty() && !backup.state().busy;
  };
  if (!waitUntil(lastOneIsFiled, kPatience))
    wrong(QStringLiteral("The camera was disconnected, and things did not come to rest."));
}

void Day::takeStock() {
  packUp();
  _account = std::make_unique<Account>(_places, _earlier, _shutter.records());
  _account->checkBackup(_hands.moved());
  _missingKnown = false;
  _live.app->backup().backupMissingNow();
  const auto allCopied = [this] { return _missingKnown && _live.app->backup().queue().isEmpty(); };
  if (!waitUntil(allCopied, kPatience))
    wrong(QStringLiteral("What was missing in the backup did not get there."));
  quitApplication();
  checkQueueFile();
  _account->checkPhotos(_notFiled + _filingsCutShort);
  _account->checkWholeBackup();
  _diary.flush();
  _account->checkPlaces(_hands.moved());
  _wrong += _account->wrong();
}

}  // namespace ambrel::soak
