// SPDX-License-Identifier: Apache-2.0
#include "ui/TopPanel.h"

#include "ui/Appearance.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

constexpr int kCameraValueSize = 13;
constexpr int kAmountValueSize = 15;
constexpr int kReconnectSymbolSize = 22;
constexpr int kGearSymbolSize = 22;

// The dot before a state takes the state's colour with it.
QString withDot(const QString& text) {
  return QStringLiteral("● ") + text;
}

}  // namespace

TopPanel::TopPanel(const StatusLine& statusLine, const StorageMonitor& storage,
                   const CaptureSettings& settings, QWidget* parent)
    : Surface(parent),
      _statusLine(statusLine),
      _storage(storage),
      _settings(settings),
      _cameraCard(new StatusCard(QStringLiteral("CAMERA"), kCameraValueSize, this)),
      _readinessCard(new StatusCard(QStringLiteral("STATUS"), kCameraValueSize, this)),
      _storageCard(new StatusCard(QStringLiteral("Available Storage"), kAmountValueSize, this)),
      _backupCard(new StatusCard(QStringLiteral("Backup"), kAmountValueSize, this)),
      _counterField(new QLineEdit(settings.counterText())),
      _counterCard(new StatusCard(QStringLiteral("NEXT #"), _counterField, this)),
      _forceReconnectButton(new AmbrelButton(QStringLiteral("Reconnect camera"), this)),
      _gearButton(new AmbrelButton(QStringLiteral("Settings"), this)) {
  const Palette palette;
  styleCardView(palette.softPanelColor());
  _cameraCard->setValue(withDot(QStringLiteral("—")), palette.orangeColor());
  _cameraCard->setValueToolTip(QStringLiteral("Live camera connection status"));
  _storageCard->setValue(QStringLiteral("Checking..."), palette.greenColor());
  _backupCard->setValue(QStringLiteral("—"), palette.greenColor());

  styleCounterField(_counterField);
  _counterField->setToolTip(QStringLiteral("Next photo number"));
  _counterField->setAccessibleName(QStringLiteral("Next photo number"));
  connect(_counterField, &QLineEdit::textEdited, this, [this](const QString& text) {
    Q_EMIT counterEdited(text);
    showCounter();
  });

  _forceReconnectButton->styleButton(QStringLiteral("Reconnect camera"), palette.blueColor(), true);
  _forceReconnectButton->applySymbol(Symbol::CameraReconnect, kReconnectSymbolSize, Qt::white);
  _forceReconnectButton->setToolTip(
      QStringLiteral("Reconnect the camera. Use if the camera stalls or stops responding."));
  connect(_forceReconnectButton, &AmbrelButton::clicked, this, &TopPanel::forceReconnectRequested);
  _gearButton->styleButton(QStringLiteral("Settings"), palette.grayColor(), true);
  _gearButton->applySymbol(Symbol::Gear, kGearSymbolSize, Qt::white);
  _gearButton->setToolTip(QStringLiteral("Settings — save & backup folders, destination, tags, reset"));
  connect(_gearButton, &AmbrelButton::clicked, this, &TopPanel::settingsRequested);

  connect(&_statusLine, &StatusLine::changed, this, &TopPanel::showStatus);
  connect(&_storage, &StorageMonitor::refreshed, this, &TopPanel::showStorage);
  connect(&_settings, &CaptureSettings::counterTextChanged, this, &TopPanel::showCounter);
  showStatus();
}

void TopPanel::updateControls(const ControlStates& states) {
  _counterField->setEnabled(states.setupUnlocked);
  _cameraCard->setValue(withDot(states.pill.text), pillColor(states.pill.color, Palette()));
  _cameraCard->setValueToolTip(states.pill.toolTip);
}

void TopPanel::showBackup(const BackupCardLook& look) {
  _backupCard->setValue(look.text, backupColor(look.color, Palette()));
}

void TopPanel::showStatus() {
  _readinessCard->setValue(withDot(_statusLine.text()), statusColor(_statusLine.kind(), Palette()));
  _readinessCard->setValueToolTip(_statusLine.text());
}

void TopPanel::showStorage() {
  const StorageCardLook look = storageCardLook(_storage.reading().level, Palette());
  _storageCard->setValue(_storage.reading().text, look.text);
  _storageCard->styleCardView(look.fill);
}

void TopPanel::showCounter() {
  if (_counterField->text() != _settings.counterText()) _counterField->setText(_settings.counterText());
}

void TopPanel::resizeEvent(QResizeEvent*) {
  const layout::TopPanel places = layout::topPanel(size());
  _cameraCard->setGeometry(places.cameraCard);
  _readinessCard->setGeometry(places.readinessCard);
  _storageCard->setGeometry(places.storageCard);
  _backupCard->setGeometry(places.backupCard);
  _counterCard->setGeometry(places.counterCard);
  _forceReconnectButton->setGeometry(places.forceReconnectButton);
  _gearButton->setGeometry(places.gearButton);
}

StorageCardLook storageCardLook(StorageLevel level, const Palette& palette) {
  switch (level) {
    case StorageLevel::Unknown:
      return {palette.orangeColor(), palette.storageUnknownFill()};
    case StorageLevel::Critical:
      return {palette.redColor(), palette.storageCriticalFill()};
    case StorageLevel::Low:
      return {palette.yellowColor(), palette.storageLowFill()};
    case StorageLevel::Healthy:
      return {palette.greenColor(), palette.cardBackgroundColor()};
  }
  return {};
}

QColor pillColor(PillColor color, const Palette& palette) {
  switch (color) {
    case PillColor::Green:
      return palette.greenColor();
    case PillColor::Orange:
      return palette.orangeColor();
    case PillColor::Red:
      return palette.redColor();
    case PillColor::Secondary:
      return Palette::secondaryLabelColor();
  }
  return Palette::secondaryLabelColor();
}

}  // namespace ambrel::ui
