// SPDX-License-Identifier: Apache-2.0
#include "e2e/GalleryStage.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QPainter>
#include <cmath>

#include "core/base/Text.h"
#include "core/capture/FileNames.h"

namespace ambrel::ui {
namespace {

// A home with five tags, two of them on.
Locations prepareHome(const QString& path) {
  if (!QDir().mkpath(path)) qFatal("cannot make %s", qPrintable(path));
  const Locations locations = Locations::below(path);
  QVariantList tags;
  for (const char* label : {"FR", "SS", "Indoor", "PM", "📷"}) {
    const QString text = QString::fromUtf8(label);
    tags << QVariantMap{{QStringLiteral("label"), text},
                        {QStringLiteral("suffix"), QLatin1Char('_') + text},
                        {QStringLiteral("on"), text == QLatin1String("FR") || text == QLatin1String("PM")}};
  }
  Preferences preferences(locations.preferencesFile);
  preferences.setSuffixes(tags);
  preferences.synchronize();
  return locations;
}

}  // namespace

std::vector<Row> people() {
  return {{"Anna Kowalska", "", "4", "1"},
          {"Ben Okafor", "front row, left", "2", ""},
          {"Chiara Rossi", "", "0", ""},
          {"José Álvarez", "late, comes at ten", "7", "1"},
          {"Smith/Jones, twins", "", "0", ""},
          {"Мария Иванова", "", "1", ""},
          {"नेहा शर्मा", "", "0", ""},
          {"Anna KOWALSKA", "", "0", ""},
          {"Nguyễn Văn An", "glasses off", "3", ""},
          {"Zoë Brontë-van der Westhuizen-Featherstonehaugh the Younger of Upper Wallop", "", "12", ""},
          {"Omar Haddad", "", "0", ""},
          {"Priya Raman", "", "0", ""}};
}

QImage portrait(QSize size) {
  QImage image(size, QImage::Format_RGB32);
  QPainter painter(&image);
  QLinearGradient wall(0, 0, 0, size.height());
  wall.setColorAt(0, QColor(214, 222, 228));
  wall.setColorAt(1, QColor(150, 164, 176));
  painter.fillRect(image.rect(), wall);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  const double unit = size.height() / 10.0;
  const QPointF middle(size.width() / 2.0, size.height() / 2.0);
  painter.setBrush(QColor(46, 84, 120));
  painter.drawEllipse(middle + QPointF(0, 5.2 * unit), 3.6 * unit, 3.4 * unit);
  painter.setBrush(QColor(222, 184, 156));
  painter.drawEllipse(middle - QPointF(0, 0.6 * unit), 1.7 * unit, 2.2 * unit);
  painter.setBrush(QColor(70, 48, 36));
  painter.drawChord(QRectF(middle.x() - 1.8 * unit, middle.y() - 3.1 * unit, 3.6 * unit, 3.4 * unit), 0,
                    180 * 16);
  return image;
}

Stage::Stage(const QString& folder) : _folder(folder), _locations(prepareHome(home())) {
  // Folders are shown as those in the operator's home.
  qputenv("HOME", home().toLocal8Bit());
  _dialogs.setParentWindow(&window);
  delegate.applicationDidFinishLaunching(window);
  _clock.advance(AmbrelAppDelegate::kSplashTime);
}

Stage::~Stage() {
  delegate.applicationWillTerminate();
  qputenv("HOME", _ownHome);
}

void Stage::fill(std::vector<Row> rows) {
  delegate.list().editableGrid().replaceAll(std::move(rows));
  delegate.list().setCsvPath(QStringLiteral("/home/kim/class of 2026.csv"));
  delegate.list().selectSavedOrFirstCSVRow();
  refresh();
}

void Stage::chooseFolder() {
  const QString folder = home() + QStringLiteral("/Summer school");
  putPhotos(folder);
  delegate.selectFolder();
  auto* chooser = qobject_cast<QFileDialog*>(dialog());
  chooser->setDirectory(folder);
  static_cast<QDialog*>(chooser)->done(QDialog::Accepted);
  settle();
  refresh();
}

void Stage::connectCamera() {
  delegate.connectCameraManual();
  link.say("READY|OK");
  link.say("CONNECTED|");
  refresh();
}

void Stage::setFreeSpace(quint64 bytes) {
  _files.freeSpace = bytes;
  delegate.storage().updateStorageLabel();
  QCoreApplication::processEvents();
}

void Stage::select(const std::vector<qint64>& displayRows) {
  delegate.list().tableViewSelectionDidChange(displayRows);
  Q_EMIT delegate.list().tableSelectionChanged(true);
}

void Stage::search(const QString& text) {
  window.leftPane()->searchField()->setText(text);
  delegate.list().setSearchText(text);
  refresh();
}

void Stage::refresh() {
  delegate.updatePathLabels();
  delegate.updateControls();
  delegate.statusLine().refreshReadyStatusIfIdle();
}

void Stage::openSettings() {
  window.settingsPopover()->toggleSettingsPopover(window.topPanel()->gearButton());
}

QDialog* Stage::dialog() {
  settle();
  QDialog* open = _dialogs.openDialog();
  if (!open) qFatal("no dialog is open");
  open->move(window.mapToGlobal(window.rect().center()) - open->rect().center());
  return open;
}

AmbrelButton* Stage::button(const QString& title) {
  for (AmbrelButton* button : window.findChildren<AmbrelButton*>())
    if (button->text() == title || button->accessibleName() == title) return button;
  qFatal("no button %s", qPrintable(title));
}

void Stage::shoot(const QString& name, QWidget* widget, const std::vector<QWidget*>& over) {
  QWidget& subject = widget ? *widget : window;
  settle();
  const double scale = subject.devicePixelRatioF();
  const auto pixels = [scale](int points) { return static_cast<int>(std::ceil(points * scale)); };
  QImage picture(pixels(subject.width()), pixels(subject.height()), QImage::Format_ARGB32_Premultiplied);
  picture.setDevicePixelRatio(scale);
  picture.fill(Qt::transparent);
  subject.render(&picture, {}, {}, QWidget::DrawWindowBackground | QWidget::DrawChildren);
  for (QWidget* above : over)
    above->render(&picture, above->mapToGlobal(QPoint()) - subject.mapToGlobal(QPoint()));
  const QString file = QStringLiteral("%1/%2@%3x.png").arg(_folder, name).arg(scale);
  if (!picture.save(file)) qFatal("cannot write %s", qPrintable(file));
}

void Stage::putPhotos(const QString& folder) {
  if (!QDir().mkpath(folder)) qFatal("cannot make %s", qPrintable(folder));
  const NameGrid& grid = delegate.list().grid();
  for (qint64 row = 0; row < grid.rowCount(); ++row) {
    const QString name = std_to_ns(sanitize_filename(grid.bytes(row, Cell::Name)));
    for (qint64 photo = 1; photo <= grid.capturedForModelRow(row); ++photo) {
      QDir(folder).mkpath(name);
      QFile file(QStringLiteral("%1/%2/%2_%3.JPG").arg(folder, name).arg(photo, 4, 10, QLatin1Char('0')));
      if (!file.open(QIODevice::WriteOnly)) qFatal("cannot write %s", qPrintable(file.fileName()));
    }
  }
}

void Stage::settle() {
  if (!delegate.photoFiler().finishQueued(std::chrono::seconds(20))) qFatal("the folders are not read");
  QCoreApplication::processEvents();
}

}  // namespace ambrel::ui
