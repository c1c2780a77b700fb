// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <cstdint>
#include <optional>

namespace ambrel {

// Bytes of a regular file, links followed; none where there is no such file or its size cannot be read.
std::optional<std::uint64_t> fileSize(const QString& path);
// Links followed; also true of a folder or a pipe.
bool fileExists(const QString& path);

// The photos of one person: a folder in the target folder, and the names of the photos in it by number.
class NumberedFolder {
 public:
  NumberedFolder(const QString& targetDir, const QString& folderName, const QString& extension);

  QString pathOfNumber(qint64 number) const;
  // With all missing parents. A failure shows when the first photo is moved there.
  void create() const;
  // The first number from `number` on whose exact path is free; none when there are no more numbers.
  std::optional<qint64> firstFreeFrom(qint64 number) const;

 private:
  const QString _folder;
  const QString _folderName;
  const QString _extension;
};

}  // namespace ambrel
