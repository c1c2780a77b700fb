// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QLineEdit>

#include "core/app/Screen.h"
#include "core/backup/BackupView.h"
#include "core/base/StatusLine.h"
#include "core/capture/CaptureSettings.h"
#include "core/capture/StorageMonitor.h"
#include "ui/AmbrelButton.h"
#include "ui/Palette.h"
#include "ui/StatusCard.h"

namespace ambrel::ui {

// The panel over the panes: five cards that say how things stand, and the buttons for reconnecting and for
// the settings.
class TopPanel : public Surface {
  Q_OBJECT
 public:
  TopPanel(const StatusLine& statusLine, const StorageMonitor& storage, const CaptureSettings& settings,
           QWidget* parent);

  void updateControls(const ControlStates& states);
  void showBackup(const BackupCardLook& look);

  AmbrelButton* gearButton() const { return _gearButton; }
  QLineEdit* counterField() const { return _counterField; }

 Q_SIGNALS:
  void forceReconnectRequested();
  void settingsRequested();
  void counterEdited(const QString& text);

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  void showStatus();
  void showStorage();
  void showCounter();

  const StatusLine& _statusLine;
  const StorageMonitor& _storage;
  const CaptureSettings& _settings;
  StatusCard* _cameraCard;
  StatusCard* _readinessCard;
  StatusCard* _storageCard;
  StatusCard* _backupCard;
  QLineEdit* _counterField;
  StatusCard* _counterCard;
  AmbrelButton* _forceReconnectButton;
  AmbrelButton* _gearButton;
};

// How the storage card shows a reading.
struct StorageCardLook {
  QColor text;
  QColor fill;
  bool operator==(const StorageCardLook&) const = default;
};
StorageCardLook storageCardLook(StorageLevel level, const Palette& palette);
QColor pillColor(PillColor color, const Palette& palette);

}  // namespace ambrel::ui
