// SPDX-License-Identifier: Apache-2.0
#include "window/UseBench.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <algorithm>
#include <filesystem>

#include "core/base/Locations.h"
#include "core/base/Preferences.h"
#include "support/EndWithParent.h"
#include "support/ProcessUse.h"
#include "support/SimulatedCamera.h"
#include "window/PreviewBench.h"
#include "window/StartBench.h"

namespace ambrel::bench {
namespace {

constexpr int kPatienceMs = 300'000;  // for the previews, where others build beside
constexpr int kSettleMs = 3'000;
constexpr int kIdleMs = 10'000;
constexpr int kPreviews = 1'000;
constexpr double kMegabyte = 1024 * 1024;

// The application as a process of its own.
class Started {
 public:
  Started(const QString& home, int rows, const QStringList& task) {
    endWithParent(_process);
    _process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    _process.start(QStringLiteral(AMBREL_STARTED_WINDOW), QStringList{home, QString::number(rows)} + task);
    waitFor("painted");
  }
  ~Started() {
    _process.terminate();
    if (_process.waitForFinished(5000)) return;
    _process.kill();
    _process.waitForFinished();
  }
  Started(const Started&) = delete;
  Started& operator=(const Started&) = delete;

  // The line that begins with that word.
  QByteArray waitFor(const char* word) {
    for (;;) {
      while (!_process.canReadLine())
        require(_process.waitForReadyRead(kPatienceMs), word);
      const QByteArray line = _process.readLine().trimmed();
      if (line.startsWith(word)) return line;
    }
  }
  // Lets it go on by itself.
  void leaveAlone(int milliseconds) {
    require(!_process.waitForFinished(milliseconds) && _process.state() == QProcess::Running, "it has ended");
  }
  qint64 pid() const { return _process.processId(); }

 private:
  QProcess _process;
};

void measureList(Goals& goals, const QString& home) {
  Started app(home, kNamesInWindow, {QStringLiteral("--stay")});
  app.leaveAlone(kSettleMs);
  goals.atMost("resident memory with 100,000 names",
               static_cast<double>(residentBytes(app.pid())) / kMegabyte, 150, "MB");
}

void measureIdle(Goals& goals, const QString& home) {
  const QString target = home + QStringLiteral("/photos");
  require(QDir().mkpath(target), "no folder");
  {
    Preferences preferences(Locations::below(home).preferencesFile);
    preferences.setLastTargetDir(target);
  }
  const SimulatedCamera camera;
  qputenv("AMBREL_CAMERA_PORT", QByteArray::fromStdString(camera.gphotoPort()));
  Started app(home, kNamesInWindow, {QStringLiteral("--stay")});
  app.waitFor("watching");
  app.leaveAlone(kSettleMs);
  require(processesOf(app.pid()) > 1, "no worker");
  QElapsedTimer elapsed;
  elapsed.start();
  const double before = processorSeconds(app.pid());
  app.leaveAlone(kIdleMs);
  const double used = processorSeconds(app.pid()) - before;
  goals.atMost("of a core, watching the camera, with the worker",
               100 * used * 1000 / static_cast<double>(elapsed.elapsed()), 2, "%");
  qunsetenv("AMBREL_CAMERA_PORT");
}

void measurePreviews(Goals& goals, const QString& home) {
  const QString target = home + QStringLiteral("/photos");
  require(QDir().mkpath(target), "no folder");
  const QString photo = writePhoto(home, {1800, 1200});
  for (int i = 0; i < kPreviews; ++i)
    std::filesystem::create_hard_link(photo.toStdString(),
                                      QStringLiteral("%1/%2.jpg").arg(target).arg(i).toStdString());
  {
    Preferences preferences(Locations::below(home).preferencesFile);
    preferences.setLastTargetDir(target);
  }
  Started app(home, 0, {QStringLiteral("--step"), QString::number(kPreviews)});
  const QList<QByteArray> said = app.waitFor("stepped").split(' ');
  require(said.size() == 11, "previews are missing");
  const double early = said[1].toDouble() / kMegabyte;
  const double late = said[10].toDouble() / kMegabyte;
  goals.mention("resident memory after 100 previews", early, "MB");
  goals.atMost("  more after 900 more", std::max(0.0, late - early), 5, "MB");
}

}  // namespace

void measureUse(Goals& goals, const QString& folder) {
  const QString home = folder + QStringLiteral("/use");
  storePeople(home);
  measureList(goals, home);
  measureIdle(goals, home);
  measurePreviews(goals, folder + QStringLiteral("/previews"));
}

}  // namespace ambrel::bench
