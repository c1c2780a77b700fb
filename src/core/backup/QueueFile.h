// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QStringList>

#include "core/base/Files.h"
#include "core/base/Result.h"

namespace ambrel {

// The file that keeps the backup queue between launches: an XML property list whose root is an array of
// strings, each an absolute path.
constexpr qint64 kMaxQueueFileBytes = qint64{64} << 20;

QByteArray encodeQueue(const QStringList& paths);
// The absolute paths in `bytes`, each once, in their order; anything else in the array is left out. Fails on
// what is no property list or no flat array, on any document type but that of property lists, and above
// kMaxQueueFileBytes.
Result<QStringList> decodeQueue(QByteArray bytes);

struct QueueFile {
  enum class State { Read, Broken, Unreadable };  // Unreadable: it may well be whole, but the disk fails
  State state = State::Read;
  QStringList paths = {};
};
// As decodeQueue. A missing file is an empty queue.
QueueFile loadQueueFile(const QString& path);
// For a start. A file that the disk does not give out is kept aside under the name "<file>.unread"; the next
// start that can read it puts what it holds first, for it has waited longest.
QueueFile restoreQueueFile(Files& files, const QString& path);
// As loadQueueFile, where it does not matter why a file is not read.
Result<QStringList> readQueueFile(const QString& path);

}  // namespace ambrel
