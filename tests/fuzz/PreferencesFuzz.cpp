// SPDX-License-Identifier: Apache-2.0
// Any bytes as the file of preferences: taken or kept aside, and what is set afterwards is there at the next
// launch, beside what was read.
#include <QFile>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>

#include "core/base/Preferences.h"

using namespace ambrel;

namespace {

void require(bool held) {
  if (!held) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QTemporaryDir folder;
  const QString path = folder.filePath(QStringLiteral("preferences.ini"));
  {
    QFile file(path);
    require(file.open(QIODevice::WriteOnly));
    require(file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size)) ==
            static_cast<qint64>(size));
  }
  std::optional<QString> target;
  std::optional<qint64> row;
  std::optional<QVariantList> suffixes;
  {
    Preferences preferences(path);
    target = preferences.lastTargetDir();
    row = preferences.lastSelectedRowIndex();
    suffixes = preferences.suffixes();
    (void)preferences.autoConnect();
    (void)preferences.lastUpdateCheck();
    preferences.setLastCounterValue(42);
    preferences.setBackupDir(QStringLiteral("/backup; \"with\" = signs"));
  }
  const Preferences again(path);
  require(again.lastCounterValue() == 42);
  require(again.backupDir() == QStringLiteral("/backup; \"with\" = signs"));
  require(again.lastTargetDir() == target && again.lastSelectedRowIndex() == row);
  require(again.suffixes().has_value() == suffixes.has_value());
  return 0;
}
