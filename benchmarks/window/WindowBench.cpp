// SPDX-License-Identifier: Apache-2.0
// How soon the window is there, how fast the list follows the keys, and how long a photo takes to be seen.
#include <QApplication>
#include <QKeyEvent>
#include <algorithm>

#include "support/Benchmark.h"
#include "support/EventLoop.h"
#include "ui/Appearance.h"
#include "window/Application.h"
#include "window/BurstBench.h"
#include "window/PreviewBench.h"
#include "window/ScreenServer.h"
#include "window/StartBench.h"
#include "window/UseBench.h"

namespace ambrel::bench {
namespace {

constexpr int kRows = kNamesInWindow;
constexpr int kSteps = 600;

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

void measure(Goals& goals, const QString& folder) {
  measureStarts(goals, folder);
  ui::applyApplicationAppearance(*qApp);
  measureList(goals, folder + QStringLiteral("/full"));
  measurePreview(goals, folder);
  measureBursts(goals, folder);
  measureUse(goals, folder);
}

}  // namespace
}  // namespace ambrel::bench

int main(int argc, char** argv) {
  const ambrel::bench::ScreenServer screen;
  return ambrel::bench::runBenchmark<QApplication>(argc, argv, ambrel::bench::measure);
}
