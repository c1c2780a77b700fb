// SPDX-License-Identifier: Apache-2.0
#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <unistd.h>

#include "core/app/AmbrelAppDelegate.h"
#include "core/app/CommandLine.h"
#include "core/app/QuitDeadline.h"
#include "core/base/EventLoopGaps.h"
#include "core/base/PosixFiles.h"
#include "core/base/SystemClock.h"
#include "core/platform/FileManager.h"
#include "core/platform/QuitSignals.h"
#include "core/worker/ProcessLink.h"
#include "core/worker/StrayWorkers.h"
#include "demo/Demo.h"
#include "ui/Appearance.h"
#include "ui/Dialogs.h"
#include "ui/FontsAhead.h"
#include "ui/MainWindow.h"

using namespace ambrel;

namespace {

constexpr int kUsageError = 2;

// For measuring: where the environment names a file, the gaps of the main thread's event loop are written to
// it at the end.
class GapsOnRequest {
 public:
  GapsOnRequest() : _path(qEnvironmentVariable("AMBREL_HEARTBEAT")) {
    if (!_path.isEmpty()) _gaps = std::make_unique<EventLoopGaps>();
  }
  ~GapsOnRequest() {
    QFile file(_path);
    if (!_gaps || (file.open(QIODevice::WriteOnly) && file.write(_gaps->report().toUtf8()) >= 0)) return;
    std::fprintf(stderr, "%s: %s\n", _path.toLocal8Bit().constData(),
                 file.errorString().toLocal8Bit().constData());
  }
  GapsOnRequest(const GapsOnRequest&) = delete;
  GapsOnRequest& operator=(const GapsOnRequest&) = delete;

 private:
  const QString _path;
  std::unique_ptr<EventLoopGaps> _gaps;
};

// Without waiting for anybody.
[[noreturn]] void endAtOnce() {
  std::fputs("The disk does not answer: ending without what is still to be written.\n", stderr);
  ::_exit(EXIT_FAILURE);
}

// The application on `locations` until it is quit; `launched` is called once the launch has begun.
int runApplication(QApplication& application, const Bundle& bundle, SystemClock& clock,
                   const Locations& locations, const QUrl& releaseHost,
                   const std::function<void(AmbrelAppDelegate&, ui::MainWindow&)>& launched) {
  // A filing or copying thread may outlive everything else on a drive that hangs: what it uses is never
  // destroyed.
  static PosixFiles files;
  QuitDeadline deadline(endAtOnce);  // outlives everything that waits for a disk
  ui::Dialogs dialogs;
  ProcessLink link;
  const StrayWorkerMeans means = StrayWorkerMeans::ofTheSystem();
  FileManager fileManager;
  AmbrelAppDelegate delegate(
      clock, dialogs, files, link,
      {.locations = locations,
       .bundle = bundle,
       .killStrayWorkers = [means](qint64 own) { killStrayWorkers(own, means); },
       .driveMeans = DriveMeans::ofTheSystem(),
       .releaseHost = releaseHost,
       .openInBrowser = [](const QUrl& address) { QDesktopServices::openUrl(address); },
       .openFolder = [&fileManager](const QString& folder) { fileManager.openFolder(folder); },
       .revealFile = [&fileManager](const QString& file) { fileManager.reveal(file); }});
  ui::MainWindow window(delegate);
  dialogs.setParentWindow(&window);

  QuitSignals quitSignals;
  QObject::connect(&quitSignals, &QuitSignals::quitRequested, &application, &QApplication::quit);
  QObject::connect(&application, &QApplication::aboutToQuit, [&deadline] { deadline.quittingBegins(); });
  QObject::connect(&application, &QApplication::aboutToQuit, &delegate,
                   &AmbrelAppDelegate::applicationWillTerminate);
  application.setQuitOnLastWindowClosed(delegate.applicationShouldTerminateAfterLastWindowClosed());
  // From the event loop: before it runs, the toolkit would paint the splash before anything else goes on.
  QMetaObject::invokeMethod(
      &window,
      [&] {
        delegate.applicationDidFinishLaunching(window);
        launched(delegate, window);
      },
      Qt::QueuedConnection);
  const GapsOnRequest gaps;
  return QApplication::exec();
}

int runDemo(QApplication& application, const Bundle& bundle, const CommandLine& line) {
  QTemporaryDir home(QDir::tempPath() + QStringLiteral("/ambrel-demo-XXXXXX"));
  home.setAutoRemove(false);  // the operator looks at the photos afterwards
  const Result<SampleShoot> shoot = prepareSampleShoot(home.path());
  if (!shoot) {
    std::fprintf(stderr, "%s\n", shoot.error().toUtf8().constData());
    return 1;
  }
  std::printf("The demo's photos and settings lie in %s\n", home.path().toUtf8().constData());
  std::fflush(stdout);
  SystemClock clock;
  const bool byHand = !line.automatic && !line.unattended;
  DemoCamera camera(bundle.bundleMacOSPath(QStringLiteral("ambrel_sim_camera")),
                    byHand ? DemoCamera::Console::Terminal : DemoCamera::Console::None);
  Demo demo(line.unattended  ? Demo::Mode::Unattended
            : line.automatic ? Demo::Mode::Automatic
                             : Demo::Mode::ByHand,
            clock, shoot.value(), camera);
  QObject::connect(&demo, &Demo::finished, &application, &QApplication::exit);
  if (const Result<void> started = camera.startAndWait(); !started) {
    std::fprintf(stderr, "%s\n", started.error().toUtf8().constData());
    return 1;
  }
  qputenv("AMBREL_CAMERA_PORT", camera.cameraPort().toUtf8());
  return runApplication(application, bundle, clock, shoot.value().locations, QUrl(),
                        [&](AmbrelAppDelegate& delegate, ui::MainWindow& window) {
                          demo.run(delegate,
                                   [&window](const QString& file) { return window.grab().save(file); });
                        });
}

}  // namespace

int main(int argc, char** argv) {
  QStringList arguments;
  for (int i = 1; i < argc; ++i)
    arguments.append(QString::fromLocal8Bit(argv[i]));
  const Result<CommandLine> line = parseCommandLine(arguments);
  if (!line) {
    std::fprintf(stderr, "%s\n", line.error().toUtf8().constData());
    return kUsageError;
  }
  if (line.value().task == CommandLine::Task::Help) {
    std::fputs(commandLineHelp().toUtf8().constData(), stdout);
    return 0;
  }
  if (line.value().task == CommandLine::Task::Version) {
    const QCoreApplication withoutADisplay(argc, argv);
    const Bundle bundle = Bundle::aroundProgram(QCoreApplication::applicationDirPath());
    std::printf("Ambrel Photo Tether %s\n", bundle.displayVersion().toUtf8().constData());
    return 0;
  }
  ui::findFontsAhead();
  QApplication application(argc, argv);
  const Bundle bundle = Bundle::aroundProgram(QCoreApplication::applicationDirPath());
  ui::applyApplicationAppearance(application);
  if (line.value().task == CommandLine::Task::Demo) return runDemo(application, bundle, line.value());
  SystemClock clock;
  return runApplication(application, bundle, clock, Locations::forThisUser(),
                        ReleaseService::configuredHost(), [](AmbrelAppDelegate&, ui::MainWindow&) {});
}
