// SPDX-License-Identifier: Apache-2.0
#include "core/capture/NumberedFolder.h"

#include <QDir>
#include <QFile>
#include <limits>
#include <sys/stat.h>

#include "core/capture/FileNames.h"

namespace ambrel {
namespace {

// A path with a NUL names nothing; the system would read the part before it.
template <typename StatusCall>
bool readStatus(StatusCall call, const QString& path, struct stat& status) {
  return !path.contains(QChar::Null) && call(QFile::encodeName(path).constData(), &status) == 0;
}

// A link that leads nowhere takes its name too.
bool isTaken(const QString& path) {
  struct stat status = {};
  return readStatus(::lstat, path, status);
}

}  // namespace

std::optional<std::uint64_t> fileSize(const QString& path) {
  struct stat status = {};
  if (!readStatus(::stat, path, status) || !S_ISREG(status.st_mode)) return std::nullopt;
  return static_cast<std::uint64_t>(status.st_size);
}

bool fileExists(const QString& path) {
  struct stat status = {};
  return readStatus(::stat, path, status);
}

NumberedFolder::NumberedFolder(const QString& targetDir, const QString& folderName, const QString& extension)
    : _folder(targetDir + QLatin1Char('/') + folderName + QLatin1Char('/')),
      _folderName(folderName),
      _extension(extension) {}

QString NumberedFolder::pathOfNumber(qint64 number) const {
  return _folder + photoFileName(_folderName, number, _extension);
}

void NumberedFolder::create() const {
  // A tag may put a separator into the folder name, and so into the file names formed from it.
  const QString parent = _folder + _folderName.left(_folderName.lastIndexOf(QLatin1Char('/')) + 1);
  // All photos but the first of a person find it there; mkpath takes longer to see that than a move takes.
  if (!fileExists(parent) && !parent.contains(QChar::Null)) QDir().mkpath(parent);
}

std::optional<qint64> NumberedFolder::firstFreeFrom(qint64 number) const {
  // The very last number is not given out: there would be none to go on with.
  for (; number < std::numeric_limits<qint64>::max(); ++number) {
    if (!isTaken(pathOfNumber(number))) return number;
  }
  return std::nullopt;
}

}  // namespace ambrel
