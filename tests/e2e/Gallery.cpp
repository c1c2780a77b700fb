// SPDX-License-Identifier: Apache-2.0
// Paints the window in its states, without a screen.
//   ambrel_gallery FOLDER [SCALE]
// Without a scale, at each of those that screens have.
#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdio>

#include "e2e/GalleryStage.h"
#include "ui/Appearance.h"

namespace ambrel::ui {
namespace {

int paintAll(const QString& folder) {
  std::vector<Picture> pictures;
  takeWindowPictures(pictures);
  takeControlPictures(pictures);
  takeDialogPictures(pictures);
  for (const Picture& picture : pictures) {
    Stage stage(folder);
    picture.take(stage, QString::fromLatin1(picture.name));
  }
  return 0;
}

int paintAtEveryScale(const QString& program, const QString& folder) {
  for (const char* scale : {"1", "1.5", "2"})
    if (QProcess::execute(program, {folder, QLatin1String(scale)}) != 0) return 1;
  std::printf("%lld pictures written\n",
              static_cast<long long>(QDir(folder).entryList({QStringLiteral("*.png")}).size()));
  return 0;
}

// A screen without a device, large enough for every window and what opens beside it.
void useScreenOf(double scale, const QString& description) {
  QFile file(description);
  if (!file.open(QIODevice::WriteOnly)) qFatal("cannot write %s", qPrintable(description));
  file.write(R"({"screens": [{"name": "gallery", "x": 0, "y": 0, "width": 5200, "height": 3600,
                              "logicalDpi": 96, "logicalBaseDpi": 96, "dpr": 1}]})");
  qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + description.toLocal8Bit());
  qputenv("QT_SCALE_FACTOR", QByteArray::number(scale));
}

}  // namespace
}  // namespace ambrel::ui

int main(int argc, char** argv) {
  if (argc != 2 && argc != 3) {
    std::fputs("usage: ambrel_gallery FOLDER [SCALE]\n", stderr);
    return 2;
  }
  const QString folder = QDir(QString::fromLocal8Bit(argv[1])).absolutePath();
  if (!QDir().mkpath(folder)) return 1;
  if (argc == 2) return ambrel::ui::paintAtEveryScale(QString::fromLocal8Bit(argv[0]), folder);
  const QTemporaryDir temporary;
  // The toolkit remembers how its choosers looked last.
  qputenv("XDG_CONFIG_HOME", temporary.path().toLocal8Bit());
  ambrel::ui::useScreenOf(QByteArray(argv[2]).toDouble(), temporary.filePath(QStringLiteral("screens.json")));
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  ambrel::ui::applyApplicationAppearance(application);
  return ambrel::ui::paintAll(folder);
}
