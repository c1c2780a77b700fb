// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include "core/worker/CameraPill.h"

namespace ambrel {

// The state of every control that does not follow from one subsystem alone.
struct ControlStates {
  bool setupUnlocked = true;  // target folder, reset, destination, tags and counter may be changed
  bool exportEnabled = false;
  int saveModeIndex = 0;  // 0 both, 1 disk, 2 card
  bool autoConnect = true;
  CameraPill pill = {};
  bool operator==(const ControlStates&) const = default;
};

// What the application asks of the window. The window in turn listens to the subsystems whose state it shows.
// Order of use: installMainMenu .. showSplash, closeSplash, buildUI, then anything; at the end
// stopObservingAppearance and removeKeyMonitor.
class Screen {
 public:
  virtual ~Screen() = default;

  virtual void installMainMenu(const QString& displayVersion) = 0;
  // The first of the image files that loads becomes the application's icon; none changes nothing.
  virtual void installAppIconIfAvailable(const QStringList& imageFiles) = 0;
  virtual void observeAppearance() = 0;
  virtual void stopObservingAppearance() = 0;
  virtual void installKeyMonitor() = 0;
  virtual void removeKeyMonitor() = 0;

  virtual void showSplash(const QString& displayVersion, const QStringList& markFiles) = 0;
  virtual void closeSplash() = 0;

  virtual bool isBuilt() const = 0;
  // Creates the main window with every control, not yet laid out.
  virtual void buildUI(const QString& displayVersion) = 0;
  virtual void layoutUI() = 0;
  virtual void applyAppearance() = 0;
  // Lays out and shows the finished window.
  virtual void showWindow() = 0;

  virtual void updateControls(const ControlStates& states) = 0;
  // The line under the panes; `line` is also its tooltip.
  virtual void updatePathLabels(const QString& line) = 0;

  // Ends the application through its normal shut-down.
  virtual void terminate() = 0;
};

}  // namespace ambrel
