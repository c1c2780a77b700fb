// SPDX-License-Identifier: Apache-2.0
// Any bytes as the queue file of the backup: refused, or absolute paths, each once, which survive being
// written and read again.
#include <QSet>
#include <cstdlib>

#include "core/backup/QueueFile.h"

using namespace ambrel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Result<QStringList> decoded =
      decodeQueue(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
  if (!decoded) return 0;
  const QStringList& paths = decoded.value();
  for (const QString& path : paths) {
    if (!path.startsWith('/')) std::abort();
  }
  if (QSet<QString>(paths.begin(), paths.end()).size() != paths.size()) std::abort();
  const Result<QStringList> again = decodeQueue(encodeQueue(paths));
  if (!again || again.value() != paths) std::abort();
  return 0;
}
