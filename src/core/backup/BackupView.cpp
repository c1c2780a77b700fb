// SPDX-License-Identifier: Apache-2.0
#include "core/backup/BackupView.h"

#include <cmath>

#include "core/base/Text.h"

namespace ambrel {
namespace {

QString lastPathComponent(const QString& path) {
  return path.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
}

// What is said of a queue that is not empty, after the progress.
QString waitingText(const BackupState& state) {
  const QString count = QString::number(state.queued);
  if (state.offline) return count + QStringLiteral(" waiting — drive offline");
  if (!state.busy) return count + QStringLiteral(" waiting");
  if (!state.slow) return QStringLiteral("copying…");
  return count + QStringLiteral(" left — slow network");
}

QString buttonTitle(const BackupState& state) {
  const QString count = QString::number(state.queued);
  if (!state.enabled) return QStringLiteral("Backup: Off");
  if (state.queued == 0) return QStringLiteral("Backup ✓");
  if (state.offline) return QStringLiteral("Backup ⚠ ") + count;
  if (state.batchTotal < 1) return QStringLiteral("Backup ") + count + QStringLiteral("⏳");
  return QStringLiteral("Backup %1%").arg(backupBatchPercentage(state.batchDone, state.batchTotal));
}

BackupColor buttonColor(const BackupState& state) {
  if (!state.enabled) return BackupColor::Gray;
  if (state.queued == 0) return BackupColor::Green;
  return state.offline ? BackupColor::Red : BackupColor::Orange;
}

}  // namespace

qint64 backupBatchPercentage(qint64 done, qint64 total) {
  Q_ASSERT(total >= 1);
  return std::llround(static_cast<double>(done) * 100 / static_cast<double>(total));
}

QString backupStateText(const BackupState& state) {
  if (state.queued == 0) return QStringLiteral("up to date");
  if (state.batchTotal < 1) return waitingText(state);
  const qint64 percentage = backupBatchPercentage(state.batchDone, state.batchTotal);
  return QStringLiteral("%1% (%2/%3) · ").arg(percentage).arg(state.batchDone).arg(state.batchTotal) +
         waitingText(state);
}

BackupButtonLook backupButtonLook(const BackupState& state) {
  const bool copies = state.enabled && !state.dir.isEmpty();
  return {buttonTitle(state), buttonColor(state),
          copies ? QStringLiteral("Backup to ") + state.dir + QStringLiteral(" — ") + backupStateText(state) +
                       QStringLiteral("\nClick to change folder or turn off.")
                 : QStringLiteral("Optional backup copy of every photo. Click to choose a folder.")};
}

BackupMenuLook backupMenuLook(const BackupState& state) {
  return {state.enabled ? QStringLiteral("Backup Copy: On") : QStringLiteral("Backup Copy: Off"),
          state.enabled,
          state.queued == 0 ? QStringLiteral("Retry Backup Now")
                            : QStringLiteral("Retry Backup Now (%1 waiting)").arg(state.queued),
          state.queued > 0 && state.enabled};
}

BackupCardLook backupCardLook(const BackupState& state) {
  if (!state.enabled || state.dir.isEmpty()) return {QStringLiteral("Off"), BackupColor::Secondary};
  if (state.queued == 0) return {QStringLiteral("Up to date"), BackupColor::Green};
  return {QStringLiteral("%1 queued").arg(state.queued), BackupColor::Orange};
}

BackupPopUp backupPopUp(const BackupState& state) {
  if (state.dir.isEmpty()) return {QStringLiteral("Choose Backup Folder…"), QString()};
  return {QStringLiteral("Change Backup Folder…  (now: ") + lastPathComponent(state.dir) + QLatin1Char(')'),
          state.enabled ? QStringLiteral("Turn Backup Off") : QStringLiteral("Turn Backup On")};
}

QString backupPausedMessage(qint64 queued, const QString& detail) {
  return QStringLiteral("The backup drive isn't reachable") +
         (detail.isEmpty() ? QString() : QStringLiteral(": ") + detail) +
         QStringLiteral(", so %1 photo").arg(queued) + pluralEnding(queued) +
         (queued == 1 ? QStringLiteral(" is") : QStringLiteral(" are")) +
         QStringLiteral(
             " waiting.\n\nYour primary save is fine. Backups resume automatically when the "
             "drive/Wi-Fi reconnects — or use Backup ▸ Retry Backup Now.");
}

}  // namespace ambrel
