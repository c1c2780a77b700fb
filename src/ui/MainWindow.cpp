// SPDX-License-Identifier: Apache-2.0
#include "ui/MainWindow.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QScreen>

#include "core/app/KeyRules.h"
#include "ui/Accessibility.h"
#include "ui/Appearance.h"
#include "ui/FontsAhead.h"
#include "ui/PhotoDecoder.h"
#include "ui/TextEdits.h"
#include "ui/ThinSplitter.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

Key keyOf(int key) {
  switch (key) {
    case Qt::Key_Up:
      return Key::Up;
    case Qt::Key_Down:
      return Key::Down;
    case Qt::Key_Left:
      return Key::Left;
    case Qt::Key_Right:
      return Key::Right;
    default:
      return Key::Other;
  }
}

}  // namespace

MainWindow::MainWindow(AmbrelAppDelegate& delegate) : _delegate(delegate) {
  describeOwnControls();
}

MainWindow::~MainWindow() {
  // The focus moves once more while the controls are destroyed, when this is no longer a main window.
  disconnect(qApp, nullptr, this, nullptr);
  // It uses the pane, which is destroyed later.
  _previewPresenter.reset();
}

// ---- Around the window

void MainWindow::installMainMenu(const QString& displayVersion) {
  _menus = std::make_unique<Menus>(*menuBar(), displayVersion, [this](Command command) { start(command); });
  connect(qApp, &QApplication::focusChanged, this, &MainWindow::refreshEditMenu);
  refreshEditMenu();
}

void MainWindow::installAppIconIfAvailable(const QStringList& imageFiles) {
  const QImage image = firstImageThatLoads(imageFiles);
  if (!image.isNull()) QApplication::setWindowIcon(QIcon(QPixmap::fromImage(image)));
}

void MainWindow::observeAppearance() {
  _observingAppearance = true;
}

void MainWindow::stopObservingAppearance() {
  _observingAppearance = false;
}

void MainWindow::installKeyMonitor() {
  qApp->installEventFilter(this);
}

void MainWindow::removeKeyMonitor() {
  qApp->removeEventFilter(this);
}

void MainWindow::showSplash(const QString& displayVersion, const QStringList& markFiles) {
  _splash = std::make_unique<Splash>(displayVersion, firstImageThatLoads(markFiles));
  connect(_splash.get(), &Splash::painted, this, [this] { shapeLettersAhead(devicePixelRatioF()); });
  _splash->showCentred();
}

void MainWindow::closeSplash() {
  _splash.reset();
}

void MainWindow::terminate() {
  QApplication::quit();
}

// ---- The window

void MainWindow::buildUI(const QString& displayVersion) {
  setWindowTitle(applicationNameLine(displayVersion));
  _content = new Surface(this);
  _content->setMinimumSize(layout::kMinimumContent);

  _topPanel = new TopPanel(_delegate.statusLine(), _delegate.storage(), _delegate.settings(), _content);
  _splitView = new ThinSplitter(_content);
  _leftPane = new ListPane(_delegate.list(), _delegate.listEditing(), _splitView);
  _rightPane = new PreviewPane(_splitView);
  allowLargePhotos();
  _previewPresenter = std::make_unique<PreviewPresenter>(_delegate.preview(), *_rightPane, decodePhoto);
  _splitView->addWidget(_leftPane);
  _splitView->addWidget(_rightPane);
  _splitView->setChildrenCollapsible(false);
  _csvLabel =
      new TextLabel(QStringLiteral("List: empty"), systemFont(10), Palette::secondaryLabelColor(), _content);
  _csvLabel->setElideMode(Qt::ElideMiddle);
  _settingsPopover = new SettingsPopover(_delegate.settings(), _delegate.tags(), _content);
  connectIntents();
  connect(_content, &Surface::resized, this, &MainWindow::layoutUI);
  setCentralWidget(_content);

  restorePlacement();
  connect(_splitView, &QSplitter::splitterMoved, this, &MainWindow::rememberPlacement);
}

void MainWindow::restorePlacement() {
  const QSize menu(0, menuBar()->sizeHint().height());
  const int half = layout::halves(layout::window(layout::kInitialContent).splitView.width())[0];
  layout::Placement placement{layout::kInitialContent, half};
  // The screen may have become smaller since.
  if (const auto remembered = layout::placementFrom(_delegate.windowPlacement()))
    placement = layout::fittedPlacement(*remembered, screen()->availableSize() - menu);
  resize(placement.content + menu);
  const int width = layout::window(placement.content).splitView.width();
  _splitView->setSizes({placement.leftPane, width - _splitView->handleWidth() - placement.leftPane});
}

void MainWindow::rememberPlacement() {
  if (!isVisible() || isMaximized() || isFullScreen()) return;
  _delegate.windowPlacementDidChange(layout::placementText({_content->size(), _splitView->sizes().front()}));
}

void MainWindow::connectIntents() {
  connect(_topPanel, &TopPanel::forceReconnectRequested, this, [this] { _delegate.forceCameraReconnect(); });
  connect(_topPanel, &TopPanel::counterEdited, this,
          [this](const QString& text) { _delegate.counterTextDidChange(text); });
  connect(_topPanel, &TopPanel::settingsRequested, this,
          [this] { _settingsPopover->toggleSettingsPopover(_topPanel->gearButton()); });
  connect(_settingsPopover, &SettingsPopover::selectFolderRequested, this,
          [this] { _delegate.selectFolder(); });
  connect(_settingsPopover, &SettingsPopover::destinationSelected, this,
          [this](int index) { _delegate.selectDestination(index); });
  connect(_settingsPopover, &SettingsPopover::chooseBackupFolderRequested, this,
          [this] { _delegate.backup().chooseBackupFolder(); });
  connect(_settingsPopover, &SettingsPopover::toggleBackupRequested, this,
          [this] { _delegate.backup().toggleBackupEnabled(); });
  connect(&_delegate.backup(), &Backup::changed, this, &MainWindow::refreshBackup);
  connect(_settingsPopover, &SettingsPopover::resetRequested, this, [this] { _delegate.resetWorkflow(); });
  connect(_leftPane, &ListPane::importRequested, this, [this] { _delegate.listTransfer().loadCSV(); });
  connect(_leftPane, &ListPane::exportRequested, this, [this] { _delegate.listTransfer().exportGrid(); });
  connect(_leftPane, &ListPane::renameFolderRequested, this,
          [this](qint64 row) { _delegate.folderRename().ctxRenameFolderAndImages(row); });
  connect(_leftPane, &ListPane::openFolderRequested, this,
          [this](qint64 row) { _delegate.ctxOpenFolder(row); });
  connect(_rightPane, &PreviewPane::revealRequested, this, [this] { _delegate.revealPreviewInFinder(); });
  connect(_leftPane, &ListPane::tableClicked, this, [this] { _delegate.tableClicked(); });
}

void MainWindow::layoutUI() {
  const layout::Window places = layout::window(_content->size());
  _topPanel->setGeometry(places.topPanel);
  _splitView->setGeometry(places.splitView);
  _csvLabel->setGeometry(places.pathLine);
  _settingsPopover->follow();
  rememberPlacement();
}

void MainWindow::applyAppearance() {
  applyApplicationAppearance(*qApp);
  _content->setFill(Palette().appBackgroundColor());
}

void MainWindow::showWindow() {
  layoutUI();
  show();
  // The toolkit asks for one more painting of every control of a window just made. Heard now it falls into
  // the first one; heard later, everything would be painted twice.
  QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateLater);
  raise();
  activateWindow();
  // No field is being edited at first.
  _content->setFocus();
}

void MainWindow::updateControls(const ControlStates& states) {
  _topPanel->updateControls(states);
  _leftPane->updateControls(states);
  _leftPane->updateNameColumnCount();
  _settingsPopover->updateControls(states);
  _menus->setAutoConnect(states.autoConnect);
  refreshBackup();
}

void MainWindow::refreshBackup() {
  const Backup& backup = _delegate.backup();
  _menus->setBackup(backup.menu());
  _topPanel->showBackup(backup.card());
  _settingsPopover->showBackup(backup.backupDir(), backup.button(), backup.popUp());
}

void MainWindow::updatePathLabels(const QString& line) {
  _csvLabel->setText(line);
  _csvLabel->setToolTip(line);
  _leftPane->updateNameColumnCount();
}

// ---- What the operator does

void MainWindow::start(Command command) {
  switch (command) {
    case Command::None:
      return;
    case Command::CheckForUpdates:
      return _delegate.checkForUpdatesInteractive();
    case Command::Quit:
      return terminate();
    case Command::Undo:
    case Command::Redo:
    case Command::Cut:
    case Command::Copy:
    case Command::Paste:
    case Command::SelectAll:
      return edit(command);
    case Command::ImportCSV:
      return _delegate.listTransfer().loadCSV();
    case Command::ExportList:
      return _delegate.listTransfer().exportGrid();
    case Command::RenamePhotoFolder:
      return _delegate.folderRename().renameFolderInteractive();
    case Command::ConnectNow:
      return _delegate.connectCameraManual();
    case Command::ForceReconnect:
      return _delegate.forceCameraReconnect();
    case Command::Disconnect:
      return _delegate.disconnectCamera();
    case Command::ToggleAutoConnect:
      return _delegate.toggleAutoConnect();
    case Command::ChooseBackupFolder:
    case Command::ToggleBackup:
    case Command::RetryBackup:
    case Command::WakeAndReconnectDrive:
    case Command::BackUpMissingFiles:
    case Command::ClearBackupQueue:
      return backUp(command);
  }
}

void MainWindow::backUp(Command command) {
  Backup& backup = _delegate.backup();
  switch (command) {
    case Command::ChooseBackupFolder:
      return backup.chooseBackupFolder();
    case Command::ToggleBackup:
      backup.toggleBackupEnabled();
      // The click has moved the check mark, whatever came of it.
      return refreshBackup();
    case Command::RetryBackup:
      return backup.retryBackupNow();
    case Command::WakeAndReconnectDrive:
      return backup.wakeAndReconnectBackup();
    case Command::BackUpMissingFiles:
      return backup.backupMissingNow();
    case Command::ClearBackupQueue:
      return backup.clearBackupQueue();
    default:
      return;
  }
}

void MainWindow::edit(Command command) {
  if (auto* field = qobject_cast<QLineEdit*>(QApplication::focusWidget())) {
    editText(*field, command);
  } else if (isBuilt()) {
    editList(command);
  }
}

void MainWindow::editList(Command command) {
  if (command == Command::Paste) {
    _delegate.listEditing().paste(QApplication::clipboard()->text());
  } else if (command == Command::Copy) {
    const std::optional<QString> row = _delegate.listEditing().copy();
    if (row) QApplication::clipboard()->setText(*row);
  } else if (command == Command::SelectAll) {
    _leftPane->table()->selectAll();
  }
}

void MainWindow::refreshEditMenu() {
  const bool editingText = qobject_cast<QLineEdit*>(QApplication::focusWidget()) != nullptr;
  for (const Command command : {Command::Undo, Command::Redo, Command::Cut}) {
    _menus->action(command)->setEnabled(editingText);
  }
}

bool MainWindow::handleKeyDown(int key) {
  const bool typing = qobject_cast<QLineEdit*>(QApplication::focusWidget()) != nullptr;
  switch (keyAction(keyOf(key), typing ? KeyFocus::TextInput : KeyFocus::Elsewhere)) {
    case KeyAction::MoveSelectionUp:
      _delegate.list().moveGridSelectionBy(-1);
      return true;
    case KeyAction::MoveSelectionDown:
      _delegate.list().moveGridSelectionBy(1);
      return true;
    case KeyAction::PreviewPrevious:
      _delegate.preview().previewPreviousImage();
      return true;
    case KeyAction::PreviewNext:
      _delegate.preview().previewNextImage();
      return true;
    case KeyAction::PassThrough:
      return false;
  }
  return false;
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::KeyPress || !isBuilt()) return false;
  // Dialogs and menus keep their own arrow keys.
  const auto* widget = qobject_cast<QWidget*>(watched);
  if (!widget || widget->window() != this || QApplication::activePopupWidget()) return false;
  return handleKeyDown(static_cast<QKeyEvent*>(event)->key());
}

void MainWindow::changeEvent(QEvent* event) {
  QMainWindow::changeEvent(event);
  if (event->type() != QEvent::ThemeChange || !_observingAppearance || !isBuilt()) return;
  QMetaObject::invokeMethod(
      this, [this] { applyAppearance(); }, Qt::QueuedConnection);
}

}  // namespace ambrel::ui
