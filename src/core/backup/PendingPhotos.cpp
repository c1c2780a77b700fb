// SPDX-License-Identifier: Apache-2.0
#include "core/backup/PendingPhotos.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "core/base/FolderReader.h"
#include "core/base/PathText.h"

namespace ambrel {
namespace {

constexpr int kMaxNameAttempts = 16;

qint64 nanosecondsNow() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

// As long for every moment, so that names sort as the moments do.
QByteArray nameOfMoment(qint64 nanoseconds) {
  return QByteArray::number(nanoseconds, 16).rightJustified(16, '0');
}

// What a link names; empty for anything but a link to an absolute path.
QString targetOf(const QByteArray& link) {
  std::array<char, PATH_MAX> target{};
  const ssize_t length = ::readlink(link.constData(), target.data(), target.size());
  if (length <= 0 || target[0] != '/') return {};
  return path_to_ns(std::string(target.data(), static_cast<std::size_t>(length)));
}

bool liesOnVolume(const QByteArray& path, dev_t volume) {
  struct stat status = {};
  const QByteArray folder = path.left(path.lastIndexOf('/') + 1);
  return ::stat(folder.constData(), &status) == 0 && status.st_dev == volume;
}

}  // namespace

QByteArray PendingPhotos::linkPath(const QByteArray& name) const {
  return QByteArray::fromStdString(ns_to_path(_folder)) + '/' + name;
}

void PendingPhotos::add(const QStringList& paths) {
  QStringList made;
  for (const QString& path : paths) {
    if (addLink(path)) made.append(path);
  }
  if (!made.isEmpty()) flushUnlessBeside(made.first());
}

bool PendingPhotos::addLink(const QString& path) {
  if (path.contains(QChar::Null)) return false;
  const QByteArray target = QByteArray::fromStdString(ns_to_path(path));
  const std::lock_guard lock(_mutex);
  if (_links.contains(path)) return false;
  for (int attempt = 0; attempt < kMaxNameAttempts; ++attempt) {
    _lastName = std::max(nanosecondsNow(), _lastName + 1);
    const QByteArray name = nameOfMoment(_lastName);
    if (makeLink(target, linkPath(name))) {
      _links.insert(path, name);
      return true;
    }
    if (errno != EEXIST) break;
  }
  return false;
}

bool PendingPhotos::makeLink(const QByteArray& path, const QByteArray& link) const {
  if (::symlink(path.constData(), link.constData()) == 0) return true;
  if (errno != ENOENT || ::mkdir(ns_to_path(_folder).c_str(), 0777) != 0) return false;
  return ::symlink(path.constData(), link.constData()) == 0;
}

// One volume brings changes back in the order in which they were made; two do not.
void PendingPhotos::flushUnlessBeside(const QString& path) const {
  const int folder = ::open(ns_to_path(_folder).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (folder < 0) return;
  struct stat status = {};
  if (::fstat(folder, &status) == 0 &&
      !liesOnVolume(QByteArray::fromStdString(ns_to_path(path)), status.st_dev))
    (void)::fsync(folder);
  ::close(folder);
}

void PendingPhotos::settle(const QString& path) {
  const std::lock_guard lock(_mutex);
  const QByteArray name = _links.take(path);
  if (!name.isEmpty()) ::unlink(linkPath(name).constData());
}

QStringList PendingPhotos::paths() {
  std::vector<std::string> names = entriesOf(ns_to_path(_folder));
  std::sort(names.begin(), names.end());
  const std::lock_guard lock(_mutex);
  QStringList paths;
  for (const std::string& entry : names) {
    const QByteArray name = QByteArray::fromStdString(entry);
    const QString path = targetOf(linkPath(name));
    if (path.isEmpty() || paths.contains(path)) {
      ::unlink(linkPath(name).constData());
      continue;
    }
    _links.insert(path, name);
    paths.append(path);
  }
  return paths;
}

}  // namespace ambrel
