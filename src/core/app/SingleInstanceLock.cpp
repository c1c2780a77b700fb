// SPDX-License-Identifier: Apache-2.0
#include "core/app/SingleInstanceLock.h"

#include <QByteArray>
#include <QFile>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace ambrel {

SingleInstanceLock::SingleInstanceLock(const QString& temporaryFolder)
    : _path(temporaryFolder + QStringLiteral("/com.ambrel.tether.single-instance.lock")) {}

bool SingleInstanceLock::acquireSingleInstanceLock() {
  // Close-on-exec: a worker that inherited the descriptor would keep the lock after a crash of the
  // application.
  const int descriptor = ::open(QFile::encodeName(_path).constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  if (descriptor < 0) return true;
  if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
    ::close(descriptor);
    return false;
  }
  const QByteArray owner = QByteArray::number(static_cast<qint64>(::getpid())) + '\n';
  // The process id is a hint for a person who looks into the file; the lock holds without it.
  if (::ftruncate(descriptor, 0) == 0) {
    [[maybe_unused]] const ssize_t written =
        ::write(descriptor, owner.constData(), static_cast<std::size_t>(owner.size()));
  }
  return true;
}

}  // namespace ambrel
