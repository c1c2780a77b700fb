// SPDX-License-Identifier: Apache-2.0
// How soon the window is there, how fast the list follows the keys, and how long a photo takes to be seen.
#include <QApplication>
#include <QKeyEvent>
#include <QTemporaryDir>
#include <algorithm>
#include <filesystem>

#include "support/EventLoop.h"
#include "ui/Appearance.h"
#include "window/Application.h"
#include "window/PreviewBench.h"
#include "window/ScreenServer.h"
#include "window/StartBench.h"
#include "window/UseBench.h"

namespace ambrel::bench {
namespace {

constexpr int kRows = kNamesInWindow;
constexpr int kSteps = 600;
constexpr int kBurst = 300;

// Hears when a widget has been painted.
class PaintWatch : public QObject {
 public:
  explicit PaintWatch(QWidget& widget) { widget.installEventFilter(this); }
  void waitForPaint() {
    painted = false;
    while (!painted)
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  bool painted = false;

 protected:
  bool eventFilter(QObject*, QEvent* event) override {
    painted |= event->type() == QEvent::Paint;
    return false;
  }
};

// ---- Keys in the window

void press(QWidget& widget, int key, const QString& text = {}) {
  QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
  QApplication::sendEvent(&widget, &down);
  QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier, text);
  QApplication::sendEvent(&widget, &up);
}

void measureKeys(Goals& goals, Application& app) {
  ui::NameTable& table = *app.window.leftPane()->table();
  app.window.repaint();
  PaintWatch watch(*table.viewport());
  std::vector<double> steps(kSteps);
  for (double& step : steps) {
    step = millisecondsOf([&] {
      press(table, Qt::Key_Down);
      watch.waitForPaint();
    });
  }
  require(app.delegate.list().selectedRow() == kSteps, "the selection did not follow");
  double whole = 0;
  for (const double step : steps)
    whole += step;
  goals.atMost("row stepped to and painted", whole / kSteps, 1000.0 / 60);
  goals.mention("  rows a second", kSteps * 1000 / whole, "");
}

// Words typed letter by letter, the list painted after each.
void measureTyping(Goals& goals, Application& app) {
  PaintWatch watch(*app.window.leftPane()->table()->viewport());
  std::vector<double> letters;
  QLineEdit& field = *app.window.leftPane()->searchField();
  const Heartbeat heartbeat;
  for (int round = 0; round < 30; ++round) {
    for (const char letter : {'n', 'u', 'm', 'b', 'e', 'r', ' ', '1', '2', '3'}) {
      letters.push_back(millisecondsOf([&] {
        press(field, 0, QString(QLatin1Char(letter)));
        watch.waitForPaint();
      }));
    }
    require(app.delegate.list().filteredRows().size() == 111, "wrong names");
    app.delegate.list().clearSearch();
    watch.waitForPaint();
  }
  goals.atMost("letter typed in the search, painted, p99", percentile(letters, 99), 8);
  goals.mention("  median", median(letters));
  goals.atMost("longest gap while typing, 100,000 names", static_cast<double>(heartbeat.longestGap().count()),
               16);
}

void measureList(Goals& goals, const QString& home) {
  ClockAfterSplash clock;
  Application app(home, clock);
  require(runEventsUntil([&] { return app.window.isBuilt(); }), "no window");
  require(app.delegate.list().grid().rowCount() == kRows, "the list is not there");
  measureKeys(goals, app);
  measureTyping(goals, app);
}

// Photos as fast as they can be filed, with the window, the preview and the backup at work on them.
void measureBurst(Goals& goals, const QString& home) {
  storePeople(home);
  const QDir root(home);
  for (const char* name : {"Photos", "Copies", "Downloads"})
    require(root.mkpath(QLatin1String(name)), "no folders");
  Preferences preferences(Locations::below(home).preferencesFile);
  preferences.setLastTargetDir(root.filePath(QStringLiteral("Photos")));
  preferences.setBackupDir(root.filePath(QStringLiteral("Copies")));
  preferences.setBackupEnabled(true);
  preferences.synchronize();
  const QString photo = writePhoto(home, {1800, 1200});
  std::vector<QString> downloads;
  for (int i = 0; i < kBurst; ++i) {
    downloads.push_back(root.filePath(QStringLiteral("Downloads/IMG_%1.JPG").arg(i)));
    std::filesystem::create_hard_link(photo.toStdString(), downloads.back().toStdString());
  }
  ClockAfterSplash clock;
  Application app(home, clock);
  require(runEventsUntil([&] { return app.window.isBuilt() && app.delegate.backup().isEnabled(); }),
          "no window");
  const auto photosIn = [&](const char* name) {
    return QDir(root.filePath(QLatin1String(name)) + QStringLiteral("/Person Number 0"))
        .entryList(QDir::Files)
        .size();
  };
  // Which of them, all of one age, is the last in the list is left open.
  const QString all = QStringLiteral("/%1)").arg(kBurst);
  const Heartbeat heartbeat;
  for (const QString& path : downloads)
    app.delegate.photoFiler().handleDownloadedPath(path);
  const auto allShown = [&] { return app.window.rightPane()->label().endsWith(all); };
  require(runEventsUntil([&] { return allShown() && app.delegate.backup().state().queued == 0; },
                         std::chrono::minutes(3)),
          "the burst did not end");
  require(photosIn("Photos") == kBurst && photosIn("Copies") == kBurst, "photos are missing");
  require(app.delegate.list().grid().capturedForModelRow(0) == kBurst, "photos were not counted");
  goals.atMost("longest gap, 300 photos with preview and backup",
               static_cast<double>(heartbeat.longestGap().count()), 16);

  // The backup alone, of photos that are in their places.
  require(QDir(root.filePath(QStringLiteral("Copies/Person Number 0"))).removeRecursively(), "no copies");
  const Heartbeat duringBackup;
  for (const QFileInfo& filed :
       QDir(root.filePath(QStringLiteral("Photos/Person Number 0"))).entryInfoList(QDir::Files))
    app.delegate.backup().backupSavedFile(filed.absoluteFilePath());
  require(runEventsUntil([&] { return app.delegate.backup().state().queued == 0; }, std::chrono::minutes(3)),
          "the backup did not end");
  require(photosIn("Copies") == kBurst, "copies are missing");
  goals.atMost("longest gap, 300 photos backed up", static_cast<double>(duringBackup.longestGap().count()),
               16);
}

int run() {
  const QTemporaryDir folder(QStringLiteral("bench-window-XXXXXX"));
  Goals goals;
  const QString absolute = QDir(folder.path()).absolutePath();
  measureStarts(goals, absolute);
  ui::applyApplicationAppearance(*qApp);
  measureList(goals, absolute + QStringLiteral("/full"));
  measurePreview(goals, folder.path());
  measureBurst(goals, absolute + QStringLiteral("/burst"));
  measureUse(goals, absolute);
  return goals.exitCode();
}

}  // namespace
}  // namespace ambrel::bench

int main(int argc, char** argv) {
  // Static, so that it ends as well where the benchmark does not come to its end.
  static const ambrel::bench::ScreenServer screen;
  const QApplication application(argc, argv);
  return ambrel::bench::run();
}
