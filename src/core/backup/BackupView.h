// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace ambrel {

// Everything that the backup's texts depend on.
struct BackupState {
  bool enabled = false;
  QString dir = {};  // absolute path, empty for none
  qint64 queued = 0;
  bool busy = false;     // a copy is under way
  bool offline = false;  // the last copy failed
  bool slow = false;     // the copy under way takes long
  qint64 batchDone = 0;
  qint64 batchTotal = 0;
};

enum class BackupColor { Gray, Green, Orange, Red, Secondary };

struct BackupButtonLook {
  QString title;
  BackupColor color = BackupColor::Gray;
  QString toolTip;
  bool operator==(const BackupButtonLook&) const = default;
};

struct BackupMenuLook {
  QString enableTitle;  // "Backup Copy: On" or "Backup Copy: Off"
  bool enableChecked = false;
  QString retryTitle;
  bool retryEnabled = false;
  bool operator==(const BackupMenuLook&) const = default;
};

struct BackupCardLook {
  QString text;
  BackupColor color = BackupColor::Secondary;
  bool operator==(const BackupCardLook&) const = default;
};

// The menu that the button pops up.
struct BackupPopUp {
  QString chooseTitle;
  QString toggleTitle;  // empty: no such item
  bool operator==(const BackupPopUp&) const = default;
};

// Of the files of the current batch that are done; only for a batch of one file or more.
qint64 backupBatchPercentage(qint64 done, qint64 total);
// One line: "up to date", "75% (3/4) · 1 waiting", ...
QString backupStateText(const BackupState& state);
BackupButtonLook backupButtonLook(const BackupState& state);
BackupMenuLook backupMenuLook(const BackupState& state);
BackupCardLook backupCardLook(const BackupState& state);
BackupPopUp backupPopUp(const BackupState& state);
// The text of the alert for a failed copy; `detail` says why, or is empty.
QString backupPausedMessage(qint64 queued, const QString& detail);

}  // namespace ambrel
