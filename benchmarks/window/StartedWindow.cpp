// SPDX-License-Identifier: Apache-2.0
// The application as the benchmark starts it, which tells on its standard output what it has come to:
// "painted <processor time of the main thread in ms>", "watching", "stepped <bytes resident> ...".
//   window_bench_started HOME ROWS [--without-splash-time | --stay | --step PHOTOS]
#include <QApplication>
#include <QDir>
#include <QFile>
#include <cstdio>

#include "support/EventLoop.h"
#include "support/Goals.h"
#include "support/ProcessUse.h"
#include "ui/Appearance.h"
#include "ui/FontsAhead.h"
#include "window/Application.h"

namespace ambrel::bench {
namespace {

void say(const QString& line) {
  std::puts(qPrintable(line));
  std::fflush(stdout);
}

// Ends the event loop after the first painting of the list, or of the pane that it lies in while it is empty.
class FirstPaintOfList : public QObject {
 public:
  FirstPaintOfList(QApplication& application, const ui::MainWindow& window, int rows)
      : _window(window), _rows(rows) {
    application.installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::Paint || !_window.isBuilt()) return false;
    const QWidget* list = _rows > 0 ? _window.leftPane()->table()->viewport() : _window.leftPane();
    // Once the painting that is under way has come to its end.
    if (watched == list) QMetaObject::invokeMethod(qApp, &QApplication::quit, Qt::QueuedConnection);
    return false;
  }

 private:
  const ui::MainWindow& _window;
  int _rows;
};

// Watches the camera that the environment names, if it does, until it is ended.
void stay(Application& app) {
  QObject::connect(&app.delegate, &AmbrelAppDelegate::watchingConfirmed, [] { say("watching"); });
  if (qEnvironmentVariableIsSet("AMBREL_CAMERA_PORT")) app.delegate.connectCameraManual();
  QApplication::exec();
}

// Every photo of the target folder, each until it is shown; the memory after each tenth of them.
void step(Application& app, int photos) {
  PreviewList& list = app.delegate.preview();
  const auto waitForPlace = [&](int place) {
    const QString label = QStringLiteral("(%1/%2)").arg(place).arg(photos);
    require(runEventsUntil([&] { return app.window.rightPane()->label().endsWith(label); }), "no preview");
  };
  QString said = QStringLiteral("stepped");
  const QDir folder(app.delegate.settings().targetDir());
  list.showPreviewPath(folder.filePath(folder.entryList(QDir::Files).constFirst()),
                       PreviewList::ListRefresh::Yes);
  require(runEventsUntil([&] { return list.previewImagePaths().size() == photos; }), "no list");
  while (list.hasPrevious())
    list.previewPreviousImage();
  waitForPlace(1);
  for (int place = 2; place <= photos; ++place) {
    list.previewNextImage();
    waitForPlace(place);
    if (place % (photos / 10) == 0)
      said += QStringLiteral(" %1").arg(residentBytes(QCoreApplication::applicationPid()));
  }
  say(said);
}

int run(QApplication& application, const QStringList& arguments) {
  const int rows = arguments.value(2).toInt();
  const QString task = arguments.value(3);
  ui::applyApplicationAppearance(application);
  SystemClock clock;
  ClockAfterSplash clockAfterSplash;
  Application app(arguments.value(1),
                  task == QLatin1String("--without-splash-time") ? clockAfterSplash : clock);
  {
    const FirstPaintOfList list(application, app.window, rows);
    QApplication::exec();
  }
  say(QStringLiteral("painted %1").arg(processorMillisecondsOfThread()));
  require(app.delegate.list().grid().rowCount() == rows, "the list is not there");
  if (task == QLatin1String("--stay")) stay(app);
  if (task == QLatin1String("--step")) step(app, arguments.value(4).toInt());
  return 0;
}

}  // namespace
}  // namespace ambrel::bench

int main(int argc, char** argv) {
  ambrel::ui::findFontsAhead();
  QApplication application(argc, argv);
  return ambrel::bench::run(application, QCoreApplication::arguments());
}
