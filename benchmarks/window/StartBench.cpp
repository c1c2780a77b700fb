// SPDX-License-Identifier: Apache-2.0
#include "window/StartBench.h"

#include <QProcess>
#include <cmath>
#include <string>
#include <vector>

#include "core/app/AmbrelAppDelegate.h"
#include "core/base/PosixFiles.h"
#include "core/list/ListStore.h"
#include "support/EndWithParent.h"

namespace ambrel::bench {
namespace {

// As many as the figures take to come to rest: the splash costs more than a second each time.
constexpr std::size_t kFewestStarts = 9;
constexpr std::size_t kMostStarts = 21;
constexpr double kAtRest = 0.015;

// What the starts of one program took, in milliseconds until its window was painted.
struct Starts {
  void measure(const QString& path, const QStringList& arguments, double splash = 0) {
    QProcess program;
    endWithParent(program);
    const double taken = millisecondsOf([&] {
      program.start(path, arguments);
      require(program.waitForReadyRead(20000), "nothing was painted");
    });
    const QByteArray said = program.readAllStandardOutput();
    require(said.startsWith("painted "), "nothing was painted");
    program.waitForFinished();
    require(program.exitCode() == 0, "the program failed");
    elapsed.push_back(taken - splash);
    ofMainThread.push_back(said.mid(8).trimmed().toDouble());
  }
  // Whether more starts would hardly move the median.
  bool isAtRest() const {
    return Sample(elapsed).spread / std::sqrt(static_cast<double>(elapsed.size())) < kAtRest;
  }
  std::vector<double> elapsed;
  std::vector<double> ofMainThread;  // processor time
};

}  // namespace

void storePeople(const QString& home) {
  std::vector<Row> rows;
  rows.reserve(kNamesInWindow);
  for (int i = 0; i < kNamesInWindow; ++i)
    rows.push_back({"Person Number " + std::to_string(i), i % 3 == 0 ? "front row, left" : "",
                    std::to_string(i % 4), i % 40 == 0 ? "1" : ""});
  PosixFiles files;
  const Locations locations = Locations::below(home);
  NameGrid grid;
  grid.replaceAll(std::move(rows));
  ListStore store(files, locations);
  require(store.save(grid), "no list");
}

void measureStarts(Goals& goals, const QString& folder) {
  const QString empty = folder + QStringLiteral("/empty");
  const QString full = folder + QStringLiteral("/full");
  storePeople(full);
  const QString peer = QStringLiteral(AMBREL_MINIMAL_WIDGET);
  const QString ours = QStringLiteral(AMBREL_STARTED_WINDOW);
  const QString names = QString::number(kNamesInWindow);
  const QString without = QStringLiteral("--without-splash-time");
  // The splash is to stay for this long, whatever else happens.
  constexpr auto kSplash = static_cast<double>(AmbrelAppDelegate::kSplashTime.count());
  Starts minimal;
  Starts withoutText;
  Starts window;
  Starts withNames;
  Starts windowAtOnce;
  Starts withNamesAtOnce;
  const auto enough = [&] {
    if (window.elapsed.size() < kFewestStarts) return false;
    return window.elapsed.size() == kMostStarts ||
           (window.isAtRest() && withNames.isAtRest() && minimal.isAtRest());
  };
  while (!enough()) {
    window.measure(ours, {empty, QStringLiteral("0")}, kSplash);
    minimal.measure(peer, {QStringLiteral("Text")});
    withNames.measure(ours, {full, names}, kSplash);
    windowAtOnce.measure(ours, {empty, QStringLiteral("0"), without});
    withoutText.measure(peer, {});
    withNamesAtOnce.measure(ours, {full, names, without});
  }
  const char* peerName = "widget with a line of text";
  goals.atMostTimes("start to window, beyond the splash's 1150 ms", window.elapsed, peerName, minimal.elapsed,
                    1.7);
  goals.atMostTimes("  with 100,000 names", withNames.elapsed, peerName, minimal.elapsed, 2.5);
  goals.mention("  with a splash of no time", windowAtOnce.elapsed);
  goals.mention("  with a splash of no time, 100,000 names", withNamesAtOnce.elapsed);
  goals.mention("  widget without any text", withoutText.elapsed);
  goals.mention("  processor time of the main thread, no splash time", windowAtOnce.ofMainThread);
  goals.mention("  the same, 100,000 names", withNamesAtOnce.ofMainThread);
  goals.mention("  the same, widget with a line of text", minimal.ofMainThread);
}

}  // namespace ambrel::bench
