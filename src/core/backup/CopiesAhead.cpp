// SPDX-License-Identifier: Apache-2.0
#include "core/backup/CopiesAhead.h"

#include <QFile>
#include <algorithm>
#include <condition_variable>
#include <deque>
#include <future>
#include <list>
#include <mutex>
#include <optional>
#include <thread>
#include <unistd.h>
#include <utility>

#include "core/backup/BackupCopy.h"
#include "core/base/FileTimes.h"

namespace ambrel {
namespace {

using std::chrono::steady_clock;
using Moment = steady_clock::time_point;

// Errors show when the copy is to be written. The backup folder itself is never made: when its drive goes
// away at this moment, a folder in its place would take the copies from now on.
void makeFoldersOf(const CopyPlace& place) {
  const QString& path = place.destination;
  for (qsizetype slash = path.indexOf(QLatin1Char('/'), place.backupDir.size() + 1); slash >= 0;
       slash = path.indexOf(QLatin1Char('/'), slash + 1)) {
    ::mkdir(QFile::encodeName(path.left(slash)).constData(), 0777);
  }
}

// A file, a link or an empty folder; a folder with anything in it is not ours to remove.
void clearAway(Files& files, const QString& path) {
  if (!files.remove(path)) ::rmdir(QFile::encodeName(path).constData());
}

// By everything that changes with the content of a file.
bool isSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino && one.st_size == other.st_size &&
         isSameTime(contentTime(one), contentTime(other));
}

std::uint64_t bytesOf(const struct stat& status) {
  return static_cast<std::uint64_t>(status.st_size);
}

// Two photos from outside the target folder may have one destination, and many drives take names that differ
// in letter case or in their composition for one.
bool mayShareAName(const CopyPlace& one, const CopyPlace& other) {
  const auto folded = [](const CopyPlace& place) {
    return place.destination.normalized(QString::NormalizationForm_C).toCaseFolded();
  };
  return folded(one) == folded(other);
}

// What became of a copy, and when.
struct Flushed {
  Result<void> result;
  Moment when;
};

struct Copy {
  CopyPlace place;
  struct stat source;
  Moment begun;
  std::size_t abreast;  // copies that were on their way when this one began, itself included
  std::future<Flushed> flushed;
};

void flushElsewhere(Files::FlushOfCopy flush, std::promise<Flushed> promise) {
  std::thread([work = std::move(flush), told = std::move(promise)]() mutable {
    const Result<void> result = work();
    work = nullptr;  // what it holds goes before anybody is told that it has ended
    told.set_value({result, steady_clock::now()});
  }).detach();
}

}  // namespace

// What the thread that waits and the one that copies hold together.
class CopiesAhead::Line : public std::enable_shared_from_this<CopiesAhead::Line> {
 public:
  Line(Files& files, std::shared_ptr<const Gate> gate, std::chrono::milliseconds quick)
      : _files(files), _gate(std::move(gate)), _quick(quick) {}

  Result<void> copy(const CopyPlace& place, const struct stat& source, const std::vector<CopyPlace>& next);
  void keepOnly(const std::vector<CopyPlace>& wanted);
  bool isEmpty();

 private:
  struct Wanted {
    CopyPlace place;
    std::optional<struct stat> source = {};  // of one that is waited for
  };
  Copy take(const CopyPlace& place);
  bool isBegun(const CopyPlace& place) const;
  void want(std::optional<Wanted> first, const std::vector<CopyPlace>& next);
  Result<void> resultOf(Copy copy);
  void discard(Copy copy);

  void work();
  bool make(std::unique_lock<std::mutex>& lock, const Wanted& wanted);
  bool mayGoAhead(const CopyPlace& place, const struct stat& source) const;
  void giveUpGoingAhead();

  Files& _files;
  const std::shared_ptr<const Gate> _gate;
  const std::chrono::milliseconds _quick;
  std::mutex _mutex;  // guards everything below
  std::condition_variable _changed;
  CopyPlace _current;  // is waited for, or has not got its name yet
  std::deque<Wanted> _wanted;
  std::list<Copy> _copies;  // begun, and not taken yet
  bool _works = false;
  bool _isQuick = false;
};

// ---- The thread that waits

Result<void> CopiesAhead::Line::copy(const CopyPlace& place, const struct stat& source,
                                     const std::vector<CopyPlace>& next) {
  _gate->waitUntilOpen();
  std::unique_lock lock(_mutex);
  _current = CopyPlace(place);  // the race checker does not see into an assignment that Qt does
  if (isBegun(place)) {
    Copy ahead = take(place);
    if (isSameFile(ahead.source, source)) {
      want({}, next);
      lock.unlock();
      if (resultOf(std::move(ahead))) return {};
    } else {
      lock.unlock();
      discard(std::move(ahead));
    }
    lock.lock();
  }
  want(Wanted{place, source}, next);
  _changed.wait(lock, [&] { return isBegun(place); });
  Copy copy = take(place);
  lock.unlock();
  return resultOf(std::move(copy));
}

Copy CopiesAhead::Line::take(const CopyPlace& place) {
  const auto found =
      std::find_if(_copies.begin(), _copies.end(), [&](const Copy& copy) { return copy.place == place; });
  Copy copy = std::move(*found);
  _copies.erase(found);
  return copy;
}

bool CopiesAhead::Line::isBegun(const CopyPlace& place) const {
  return std::any_of(_copies.begin(), _copies.end(), [&](const Copy& copy) { return copy.place == place; });
}

// In place of what was wanted before: whatever is taken must not be made again.
void CopiesAhead::Line::want(std::optional<Wanted> first, const std::vector<CopyPlace>& next) {
  _wanted.clear();
  if (first) _wanted.push_back(*std::move(first));
  if (_isQuick) {
    for (const CopyPlace& place : next)
      _wanted.push_back({place});
  }
  if (_wanted.empty() || std::exchange(_works, true)) return;
  std::thread([line = shared_from_this()] { line->work(); }).detach();
}

Result<void> CopiesAhead::Line::resultOf(Copy copy) {
  const Flushed flushed = copy.flushed.get();
  const std::lock_guard lock(_mutex);
  _isQuick = flushed.result && CopiesAhead::isQuick(flushed.when - copy.begun, copy.abreast, _quick);
  return flushed.result;
}

void CopiesAhead::Line::discard(Copy copy) {
  if (copy.flushed.get().result) (void)_files.remove(copy.place.temporary());
}

void CopiesAhead::Line::keepOnly(const std::vector<CopyPlace>& wanted) {
  std::list<Copy> unwanted;
  {
    std::unique_lock lock(_mutex);
    const auto isWanted = [&](const CopyPlace& place) {
      return std::find(wanted.begin(), wanted.end(), place) != wanted.end();
    };
    _wanted.erase(std::remove_if(_wanted.begin(), _wanted.end(),
                                 [&](const Wanted& one) { return !isWanted(one.place); }),
                  _wanted.end());
    for (auto copy = _copies.begin(); copy != _copies.end();) {
      const auto current = copy++;
      if (!isWanted(current->place)) unwanted.splice(unwanted.end(), _copies, current);
    }
  }
  for (Copy& copy : unwanted)
    discard(std::move(copy));
}

bool CopiesAhead::Line::isEmpty() {
  std::unique_lock lock(_mutex);
  // The other thread is about to begin a copy or to end, and does neither while it waits for a drive.
  _changed.wait(lock, [this] { return !_works || !_copies.empty(); });
  return _copies.empty();
}

// ---- The thread that copies

void CopiesAhead::Line::work() {
  std::unique_lock lock(_mutex);
  while (!_wanted.empty()) {
    const Wanted wanted = std::move(_wanted.front());
    _wanted.pop_front();
    if (isBegun(wanted.place)) continue;
    if (!make(lock, wanted)) giveUpGoingAhead();
  }
  _works = false;
  _changed.notify_all();
}

void CopiesAhead::Line::giveUpGoingAhead() {
  _wanted.erase(std::remove_if(_wanted.begin(), _wanted.end(), [](const Wanted& one) { return !one.source; }),
                _wanted.end());
}

// Whether the next one may be tried too.
bool CopiesAhead::Line::make(std::unique_lock<std::mutex>& lock, const Wanted& wanted) {
  const CopyPlace& place = wanted.place;
  struct stat source = {};
  if (wanted.source) {
    source = *wanted.source;
  } else {
    const bool read = ::stat(QFile::encodeName(place.source).constData(), &source) == 0;
    if (!read || !S_ISREG(source.st_mode) || !mayGoAhead(place, source)) return false;
    if (backupCopySize(place.destination) == bytesOf(source)) return true;
  }
  std::promise<Flushed> promise;
  _copies.push_back({place, source, steady_clock::now(), _copies.size() + 1, promise.get_future()});
  _changed.notify_all();
  lock.unlock();
  makeFoldersOf(place);
  clearAway(_files, place.temporary());
  Result<Files::FlushOfCopy> copied = _files.copyToNew(place.source, place.temporary());
  const bool made = copied.ok();
  if (made) {
    flushElsewhere(std::move(copied).value(), std::move(promise));
  } else {
    promise.set_value({Failure{copied.error()}, steady_clock::now()});
  }
  lock.lock();
  return made;
}

// An empty photo holds up those behind it.
bool CopiesAhead::Line::mayGoAhead(const CopyPlace& place, const struct stat& source) const {
  if (!_gate->isOpen() || mayShareAName(place, _current)) return false;
  std::uint64_t bytes = bytesOf(source);
  for (const Copy& copy : _copies) {
    if (mayShareAName(place, copy.place)) return false;
    bytes += bytesOf(copy.source);
  }
  return source.st_size > 0 && _copies.size() < kMaxCopies && bytes <= kMaxBytes;
}

// ----

CopiesAhead::CopiesAhead(Files& files, std::shared_ptr<const Gate> gate, std::chrono::milliseconds quick)
    : _line(std::make_shared<Line>(files, std::move(gate), quick)), _files(files) {}

Result<void> CopiesAhead::copy(const CopyPlace& place, const struct stat& source,
                               const std::vector<CopyPlace>& next) {
  return _line->copy(place, source, next);
}

void CopiesAhead::keepOnly(const std::vector<CopyPlace>& wanted) {
  _line->keepOnly(wanted);
}

bool CopiesAhead::isEmpty() const {
  return _line->isEmpty();
}

void CopiesAhead::hasName(const QString& destination) {
  if (_folders.isEmpty()) _firstName = steady_clock::now();
  const QString folder = destination.left(destination.lastIndexOf(QLatin1Char('/')));
  if (!_folders.contains(folder)) _folders.append(folder);
}

bool CopiesAhead::isFlushDue() const {
  return !isSettled() && (isEmpty() || steady_clock::now() - _firstName >= kMaxAgeOfNames);
}

Result<void> CopiesAhead::flushFolders() {
  Result<void> result;
  for (const QString& folder : std::exchange(_folders, {})) {
    const Result<void> flushed = _files.flushFolder(folder);
    if (!flushed) result = flushed;
  }
  return result;
}

}  // namespace ambrel
