// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>

#include "core/app/Screen.h"

namespace ambrel {

// A Screen that shows nothing and remembers, in order, what it was asked for.
class RecordingScreen : public Screen {
 public:
  void installMainMenu(const QString& version) override { note("installMainMenu " + version); }
  void installAppIconIfAvailable(const QStringList& files) override {
    note(QStringLiteral("installAppIconIfAvailable %1").arg(files.size()));
  }
  void observeAppearance() override { note("observeAppearance"); }
  void stopObservingAppearance() override { note("stopObservingAppearance"); }
  void installKeyMonitor() override { note("installKeyMonitor"); }
  void removeKeyMonitor() override { note("removeKeyMonitor"); }
  void showSplash(const QString& version, const QStringList&) override { note("showSplash " + version); }
  void closeSplash() override { note("closeSplash"); }
  bool isBuilt() const override { return _built; }
  void buildUI(const QString&) override {
    _built = true;
    note("buildUI");
  }
  void layoutUI() override { note("layoutUI"); }
  void applyAppearance() override { note("applyAppearance"); }
  void showWindow() override { note("showWindow"); }
  void updateControls(const ControlStates& states) override { controls = states; }
  void updatePathLabels(const QString& line) override { pathLine = line; }
  void terminate() override { note("terminate"); }

  // A step of somebody else's, for tests of the order across objects.
  void note(const QString& step) { steps.append(step); }

  QStringList steps;
  ControlStates controls;
  QString pathLine;

 private:
  bool _built = false;
};

}  // namespace ambrel
