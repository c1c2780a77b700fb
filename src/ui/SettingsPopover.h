// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <vector>

#include "core/app/Screen.h"
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

 Q_SIGNALS:
  void selectFolderRequested();
  void destinationSelected(int index);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void buildFolderSection();
  void buildDestinationSection();
  void buildTagSection();
  TextLabel* makePathLabel(const QString& text);
  void refreshSettingsPaths();
  void rebuildSuffixButtons();
  void restyleSuffixButtons();
  void restyleDestinationButtons();
  void layoutSettingsContent();
  bool isOwn(const QObject* object) const;

  const CaptureSettings& _settings;
  Tags& _tags;
  QWidget* _anchor = nullptr;
  ControlStates _states;
  std::array<TextLabel*, 5> _settingsSectionLabels{};
  AmbrelButton* _folderButton;
  TextLabel* _settingsFolderPathLabel;
  std::array<AmbrelButton*, 3> _destButtons{};
  std::vector<AmbrelButton*> _suffixButtons;
  AmbrelButton* _suffixManageButton;
};

// With a tilde in the home folder's place.
QString abbreviatedPath(const QString& path, const QString& home);

}  // namespace ambrel::ui
