// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <vector>

#include "core/base/PosixFiles.h"
#include "support/TestClock.h"
#include "support/TestLink.h"
#include "ui/Dialogs.h"
#include "ui/MainWindow.h"

namespace ambrel::ui {

constexpr quint64 kGiB = 1024ULL * 1024 * 1024;

// Volumes of a size that is the same on every machine.
class GalleryFiles : public PosixFiles {
 public:
  VolumeSpace volumeSpace(const QString&) override { return {freeSpace, 500 * kGiB}; }
  quint64 freeSpace = 212 * kGiB;
};

// A list with names of every kind.
std::vector<Row> people();
// What a camera might see: a person before a wall.
QImage portrait(QSize size);

// The whole application on a clock that stands still, a worker that says what it is told to, and files in a
// temporary folder; and a camera that takes pictures of it.
class Stage {
 public:
  explicit Stage(const QString& folder);
  ~Stage();

  void fill(std::vector<Row> rows);
  // A folder with as many photos on the disk as the list counts.
  void chooseFolder();
  void connectCamera();
  void setFreeSpace(quint64 bytes);
  void select(const std::vector<qint64>& displayRows);
  void search(const QString& text);
  void refresh();
  void openSettings();
  // The dialog that is open now, in the middle of the window.
  QDialog* dialog();
  Dialogs& dialogs() { return _dialogs; }
  NameTable* table() { return window.leftPane()->table(); }
  // The control with this title or, where it shows none, this name for those who cannot see it.
  AmbrelButton* button(const QString& title);
  QString home() const { return _home.filePath(QStringLiteral("kim")); }

  // The widget as it looks now, in the pixels of this run's scale; what is `over` it lies where it lies on
  // the screen.
  void shoot(const QString& name, QWidget* widget = nullptr, const std::vector<QWidget*>& over = {});

 private:
  void putPhotos(const QString& folder);
  // What other threads were asked for has come, and what followed from it.
  void settle();

  QString _folder;
  const QByteArray _ownHome = qgetenv("HOME");
  QTemporaryDir _home;
  Locations _locations;
  TestClock _clock;
  Dialogs _dialogs;
  GalleryFiles _files;

 public:
  TestLink link;
  AmbrelAppDelegate delegate{
      _clock, _dialogs, _files, link, {_locations, Bundle(QStringLiteral(AMBREL_BUNDLE_DIR)), [](qint64) {}}};
  MainWindow window{delegate};
};

struct Picture {
  const char* name;
  std::function<void(Stage& stage, const QString& name)> take;
};

void takeWindowPictures(std::vector<Picture>& pictures);
void takeControlPictures(std::vector<Picture>& pictures);
void takeDialogPictures(std::vector<Picture>& pictures);

}  // namespace ambrel::ui
