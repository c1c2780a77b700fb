// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDateTime>
#include <QMap>
#include <QSet>
#include <QString>
#include <QVariantList>
#include <mutex>
#include <optional>

#include "core/base/WriteBehind.h"

namespace ambrel {

// The settings kept between launches. An absent key, or one whose stored value has the wrong type, reads as
// nullopt. Read once from the file, then kept in memory; written behind, since a settings file is flushed to
// the disk with every write. Main thread only.
class Preferences {
 public:
  // `file` is the absolute path of the INI file. A file that cannot be parsed is kept aside under the name
  // "<file>.broken", followed by a number when that is taken.
  explicit Preferences(const QString& file);
  // Writes what was set since the last synchronize().
  ~Preferences();

  std::optional<QString> lastCSVPath() const;
  void setLastCSVPath(const QString& path);
  std::optional<QString> lastTargetDir() const;
  void setLastTargetDir(const QString& path);
  std::optional<qint64> lastSelectedRowIndex() const;
  void setLastSelectedRowIndex(qint64 row);
  std::optional<qint64> lastCounterValue() const;
  void setLastCounterValue(qint64 value);
  std::optional<bool> autoConnect() const;
  void setAutoConnect(bool on);
  std::optional<QString> backupDir() const;
  void setBackupDir(const QString& path);
  std::optional<bool> backupEnabled() const;
  void setBackupEnabled(bool on);
  std::optional<QString> backupShareURL() const;
  void setBackupShareURL(const std::optional<QString>& url);
  std::optional<QString> backupMAC() const;
  void setBackupMAC(const std::optional<QString>& address);
  std::optional<QString> backupHost() const;
  void setBackupHost(const QString& host);
  std::optional<QDateTime> lastUpdateCheck() const;
  void setLastUpdateCheck(const QDateTime& time);
  // Maps with the keys "label", "suffix", "on".
  std::optional<QVariantList> suffixes() const;
  void setSuffixes(const QVariantList& suffixes);

  // Size and divider of the main window, in a text of the window's own.
  std::optional<QString> windowPlacement() const;
  void setWindowPlacement(const QString& placement);

  // The four keys that the workflow reset forgets: list file, target folder, row, counter.
  void removeWorkflowKeys();
  // Starts writing what was set; nothing to do when nothing changed. The file follows within moments.
  void synchronize();
  // As synchronize(), and waits until the file is written.
  void synchronizeAndWait();

 private:
  struct Snapshot {
    QMap<QString, QVariant> values;
    QSet<QString> removed;
  };
  void set(const char* key, const QVariant& value);
  void remove(const char* key);
  void write();

  const QString _file;
  QMap<QString, QVariant> _values;
  QSet<QString> _removed;
  bool _changed = false;
  std::mutex _mutex;  // guards _toWrite
  Snapshot _toWrite;
  WriteBehind _writer;
};

}  // namespace ambrel
