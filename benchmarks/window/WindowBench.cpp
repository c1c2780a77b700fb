// SPDX-License-Identifier: Apache-2.0
// How soon the window is there, how fast the list follows the keys, and how long a photo takes to be seen.
#include <QApplication>
#include <QKeyEvent>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "core/app/AmbrelAppDelegate.h"
#include "core/base/PosixFiles.h"
#include "core/base/SystemClock.h"
#include "core/worker/ProcessLink.h"
#include "support/EventLoop.h"
#include "ui/Appearance.h"
#include "ui/Dialogs.h"
#include "ui/MainWindow.h"
#include "window/PreviewBench.h"

namespace ambrel::bench {
namespace {

constexpr int kRows = 100'000;
constexpr int kStarts = 15;
constexpr int kSteps = 600;
constexpr int kBurst = 300;

// The application's clock with the splash already past.
class ClockAfterSplash : public SystemClock {
 public:
  TimerId callAfter(std::chrono::milliseconds delay, const QObject* context,
                    std::function<void()> action) override {
    return SystemClock::callAfter(
        delay == AmbrelAppDelegate::kSplashTime ? std::chrono::milliseconds(0) : delay, context,
        std::move(action));
  }
};

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

struct Application {
  explicit Application(const QString& home)
      : locations(Locations::below(home)),
        delegate(clock, dialogs, files, link, {locations, Bundle(home), [](qint64) {}}),
        window(delegate) {
    delegate.applicationDidFinishLaunching(window);
  }
  ~Application() { delegate.applicationWillTerminate(); }

  Locations locations;
  ClockAfterSplash clock;
  PosixFiles files;
  ProcessLink link;
  ui::Dialogs dialogs;
  AmbrelAppDelegate delegate;
  ui::MainWindow window;
};

std::vector<Row> people() {
  std::vector<Row> rows;
  for (int i = 0; i < kRows; ++i)
    rows.push_back({"Person Number " + std::to_string(i), i % 3 == 0 ? "front row, left" : "",
                    std::to_string(i % 4), i % 40 == 0 ? "1" : ""});
  return rows;
}

void storePeople(const QString& home) {
  PosixFiles files;
  const Locations locations = Locations::below(home);
  NameGrid grid;
  grid.replaceAll(people());
  ListStore store(files, locations);
  require(store.save(grid), "no list");
}

// ---- Programs of their own, started and timed by this one

// Hears the first painting of the list, or of the pane that it lies in while it is empty.
class FirstPaintOfList : public QObject {
 public:
  FirstPaintOfList(QApplication& application, const ui::MainWindow& window, int rows)
      : _window(window), _rows(rows) {
    application.installEventFilter(this);
  }
  bool painted = false;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::Paint || !_window.isBuilt()) return false;
    const QWidget* list = _rows > 0 ? _window.leftPane()->table()->viewport() : _window.leftPane();
    painted |= watched == list;
    return false;
  }

 private:
  const ui::MainWindow& _window;
  int _rows;
};

int showWindow(QApplication& application, const QString& home, int rows) {
  ui::applyApplicationAppearance(application);
  Application app(home);
  const FirstPaintOfList list(application, app.window, rows);
  while (!list.painted)
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  std::puts("painted");
  std::fflush(stdout);
  require(app.delegate.list().grid().rowCount() == rows, "the list is not there");
  return 0;
}

double timeOfStart(const QString& path, const QStringList& arguments) {
  QProcess program;
  double taken = 0;
  taken = millisecondsOf([&] {
    program.start(path, arguments);
    require(program.waitForReadyRead(20000), "nothing was painted");
  });
  require(program.readAllStandardOutput().startsWith("painted"), "nothing was painted");
  program.waitForFinished();
  require(program.exitCode() == 0, "the program failed");
  return taken;
}

void measureStarts(Goals& goals, const QString& folder) {
  const QString empty = folder + QStringLiteral("/empty");
  const QString full = folder + QStringLiteral("/full");
  storePeople(full);
  const QString ours = QCoreApplication::applicationFilePath();
  std::vector<double> minimal;
  std::vector<double> withText;
  std::vector<double> window;
  std::vector<double> withNames;
  for (int round = 0; round < kStarts; ++round) {
    minimal.push_back(timeOfStart(QStringLiteral(AMBREL_MINIMAL_WIDGET), {}));
    withText.push_back(timeOfStart(QStringLiteral(AMBREL_MINIMAL_WIDGET), {QStringLiteral("Text")}));
    window.push_back(timeOfStart(ours, {QStringLiteral("--window"), empty, QStringLiteral("0")}));
    withNames.push_back(timeOfStart(ours, {QStringLiteral("--window"), full, QString::number(kRows)}));
  }
  goals.atMostTimes("start to painted window", median(window), "minimal widget", median(minimal), 1.7);
  goals.mention("  minimal widget with a line of text", median(withText));
  goals.atMostTimes("  with 100,000 names", median(withNames), "minimal widget", median(minimal), 2.5);
}

// ---- Keys in the window

void press(QWidget& widget, int key, const QString& text = {}) {
  QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
  QApplication::sendEvent(&widget, &down);
  QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier, text);
  QApplication::sendEvent(&widget, &up);
}

void measureKeys(Goals& goals, const QString& folder) {
  Application app(folder + QStringLiteral("/full"));
  while (!app.window.isBuilt())
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  require(app.delegate.list().grid().rowCount() == kRows, "the list is not there");
  ui::NameTable& table = *app.window.leftPane()->table();
  app.window.repaint();
  PaintWatch watch(*table.viewport());
  std::vector<double> steps;
  for (int step = 0; step < kSteps; ++step) {
    steps.push_back(millisecondsOf([&] {
      press(table, Qt::Key_Down);
      watch.waitForPaint();
    }));
  }
  require(app.delegate.list().selectedRow() == kSteps, "the selection did not follow");
  double whole = 0;
  for (const double step : steps)
    whole += step;
  goals.atMost("row stepped to and painted", whole / kSteps, 1000.0 / 60);
  goals.mention("  rows a second", kSteps * 1000 / whole, "");

  std::vector<double> letters;
  QLineEdit& field = *app.window.leftPane()->searchField();
  for (int round = 0; round < 10; ++round) {
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
  std::sort(letters.begin(), letters.end());
  goals.atMost("letter typed in the search, painted, p99", letters[letters.size() * 99 / 100], 8);
  goals.mention("  median", median(letters));
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
  Application app(home);
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
}

int run(QApplication& application) {
  const QTemporaryDir folder(QStringLiteral("bench-window-XXXXXX"));
  Goals goals;
  measureStarts(goals, QDir(folder.path()).absolutePath());
  ui::applyApplicationAppearance(application);
  measureKeys(goals, QDir(folder.path()).absolutePath());
  measurePreview(goals, folder.path());
  measureBurst(goals, QDir(folder.path()).absoluteFilePath(QStringLiteral("burst")));
  return goals.exitCode();
}

}  // namespace
}  // namespace ambrel::bench

int main(int argc, char** argv) {
  // Where there is no display, everything is painted into memory, the peers as well.
  if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
    qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  const QStringList arguments = QCoreApplication::arguments();
  if (arguments.value(1) == QLatin1String("--window"))
    return ambrel::bench::showWindow(application, arguments.value(2), arguments.value(3).toInt());
  return ambrel::bench::run(application);
}
