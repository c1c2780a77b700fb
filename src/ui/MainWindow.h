// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMainWindow>
#include <QSplitter>
#include <memory>

#include "core/app/AmbrelAppDelegate.h"
#include "core/app/Screen.h"
#include "ui/ListPane.h"
#include "ui/Menus.h"
#include "ui/PreviewPane.h"
#include "ui/PreviewPresenter.h"
#include "ui/SettingsPopover.h"
#include "ui/Splash.h"
#include "ui/TopPanel.h"

namespace ambrel::ui {

// The main window. It shows the delegate's state, places what it shows, and turns what the operator does into
// the delegate's operations; it decides nothing.
class MainWindow : public QMainWindow, public Screen {
  Q_OBJECT
 public:
  explicit MainWindow(AmbrelAppDelegate& delegate);
  ~MainWindow() override;

  void installMainMenu(const QString& displayVersion) override;
  void installAppIconIfAvailable(const QStringList& imageFiles) override;
  void observeAppearance() override;
  void stopObservingAppearance() override;
  void installKeyMonitor() override;
  void removeKeyMonitor() override;
  void showSplash(const QString& displayVersion, const QStringList& markFiles) override;
  void closeSplash() override;
  bool isBuilt() const override { return _topPanel != nullptr; }
  void buildUI(const QString& displayVersion) override;
  void layoutUI() override;
  void applyAppearance() override;
  void showWindow() override;
  void updateControls(const ControlStates& states) override;
  void updatePathLabels(const QString& line) override;
  void terminate() override;

  TopPanel* topPanel() const { return _topPanel; }
  ListPane* leftPane() const { return _leftPane; }
  PreviewPane* rightPane() const { return _rightPane; }
  SettingsPopover* settingsPopover() const { return _settingsPopover; }
  QSplitter* splitView() const { return _splitView; }
  const Menus& menus() const { return *_menus; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  void connectIntents();
  void restorePlacement();
  void rememberPlacement();
  void start(Command command);
  void backUp(Command command);
  void edit(Command command);
  void editList(Command command);
  void refreshEditMenu();
  void refreshBackup();
  bool handleKeyDown(int key);

  AmbrelAppDelegate& _delegate;
  std::unique_ptr<Menus> _menus;
  std::unique_ptr<Splash> _splash;
  bool _observingAppearance = false;
  // Children of the window, absent until buildUI.
  Surface* _content = nullptr;
  TopPanel* _topPanel = nullptr;
  QSplitter* _splitView = nullptr;
  ListPane* _leftPane = nullptr;
  PreviewPane* _rightPane = nullptr;
  std::unique_ptr<PreviewPresenter> _previewPresenter;
  TextLabel* _csvLabel = nullptr;
  SettingsPopover* _settingsPopover = nullptr;
};

}  // namespace ambrel::ui
