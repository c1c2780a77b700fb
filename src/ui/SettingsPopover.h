// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMenu>
#include <QPointer>
#include <array>
#include <vector>

#include "core/app/Screen.h"
#include "core/backup/BackupView.h"
#include "core/capture/CaptureSettings.h"
#include "core/capture/Tags.h"
#include "ui/AmbrelButton.h"
#include "ui/TextLabel.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {

// The settings, in a bubble that hangs from the gear button: target folder, destination and tags. A click
// outside or Escape closes it; a question that it asks leaves it open.
class SettingsPopover : public Surface {
  Q_OBJECT
 public:
  SettingsPopover(const CaptureSettings& settings, Tags& tags, QWidget* parent);

  // Opens below `anchor`, or closes when open.
  void toggleSettingsPopover(QWidget* anchor);
  // Places the bubble below its anchor again after the window changed.
  void follow();
  void updateControls(const ControlStates& states);
  void showBackup(const QString& folder, const BackupButtonLook& button, const BackupPopUp& popUp);
  // The open menu of the backup button, or none.
  QMenu* backupMenu() const { return _backupMenu; }

 Q_SIGNALS:
  void selectFolderRequested();
  void destinationSelected(int index);
  void chooseBackupFolderRequested();
  void toggleBackupRequested();
  void resetRequested();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void buildFolderSection();
  void buildBackupSection();
  void buildDestinationSection();
  void buildTagSection();
  TextLabel* makePathLabel(const QString& text);
  void refreshSettingsPaths();
  void popUpBackupMenu();
  void rebuildSuffixButtons();
  void restyleSuffixButtons();
  void restyleDestinationButtons();
  void layoutSettingsContent();
  // The bubble without its arrow.
  static QRect body();
  bool isOwn(const QObject* object) const;

  const CaptureSettings& _settings;
  Tags& _tags;
  QWidget* _anchor = nullptr;
  ControlStates _states;
  std::array<TextLabel*, 5> _settingsSectionLabels{};
  AmbrelButton* _folderButton;
  TextLabel* _settingsFolderPathLabel;
  AmbrelButton* _backupButton;
  TextLabel* _settingsBackupPathLabel;
  QString _backupFolder;
  BackupPopUp _backupPopUp;
  QPointer<QMenu> _backupMenu;
  std::array<AmbrelButton*, 3> _destButtons{};
  std::vector<AmbrelButton*> _suffixButtons;
  AmbrelButton* _suffixManageButton;
  AmbrelButton* _resetButton;
};

// With a tilde in the home folder's place.
QString abbreviatedPath(const QString& path, const QString& home);

}  // namespace ambrel::ui
