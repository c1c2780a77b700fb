// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QTemporaryDir>
#include <functional>
#include <memory>

#include "core/app/AmbrelAppDelegate.h"
#include "core/base/PosixFiles.h"
#include "core/base/SystemClock.h"
#include "core/worker/ProcessLink.h"
#include "e2e/Hands.h"
#include "support/SimulatedCamera.h"
#include "ui/Dialogs.h"
#include "ui/MainWindow.h"

namespace ambrel {

// The whole application on a screen: the real window, dialogs, worker, files and clock, a camera on loopback,
// and hands for keys and mouse. Only the browser is not opened.
class WindowSession {
 public:
  WindowSession();
  ~WindowSession();

  bool waitUntil(const std::function<bool()>& done);

  // What the operator does, by hand.
  void importNames(const QStringList& names);
  void chooseTargetFolder();
  // The application finds the camera by itself.
  void waitForCamera();
  // Presses the shutter and waits until the photo is filed.
  void shoot(const std::string& arguments = {});
  void clickRow(int displayRow, ui::NameColumn column = ui::NameColumn::Name, int button = 1);
  void chooseFromRowMenu(int displayRow, ui::RowCommand command);
  // Clicks the entry of a menu once it is open.
  void chooseFrom(const std::function<const QMenu*()>& menu, const QString& entry);
  void chooseFromMenuBar(const QString& menu, const QString& entry);
  void clickButton(const QWidget* container, const QString& title);
  // Waits for a dialog and presses the button with this title.
  void answerDialog(const QString& buttonTitle);
  // Waits for a file chooser and types the path.
  void choosePath(const QString& path);
  void openSettings();
  void closeSettings();

  QPoint middleOf(int displayRow, ui::NameColumn column = ui::NameColumn::Name) const;
  QStringList names() const;
  // The files in the folder and below it, their paths relative to it, sorted.
  static QStringList filesBelow(const QString& path);
  QStringList filesBelowTarget() const { return filesBelow(target()); }
  QString target() const { return folder.filePath(QStringLiteral("Photos")); }
  NameList& list() { return app->list(); }
  ui::ListPane* pane() { return window->leftPane(); }

  QTemporaryDir folder;
  SimulatedCamera camera;
  Locations locations;
  SystemClock clock;
  PosixFiles files;
  ProcessLink link;
  ui::Dialogs dialogs;
  Hands hands;
  std::unique_ptr<AmbrelAppDelegate> app;
  std::unique_ptr<ui::MainWindow> window;
  bool watched = false;
  int filed = 0;
  QStringList openedInBrowser;

 private:
  // Until it is gone and the keys go to what was behind it.
  void waitUntilClosed(const QDialog* dialog);
};

}  // namespace ambrel
