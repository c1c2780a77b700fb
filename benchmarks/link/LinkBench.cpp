// SPDX-License-Identifier: Apache-2.0
// 100 MB from a worker without a line end, which a line after them must not have to wait for: the link beside
// a process whose output is read and thrown away, and beside the toolkit's own search for line ends. Ends
// with 1 when a goal is missed, with 2 when bytes or the line are lost.
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QProcess>

#include "core/worker/ProcessLink.h"
#include "support/Benchmark.h"

namespace ambrel::bench {
namespace {

constexpr int kRounds = 7;
constexpr qint64 kFlood = 100'000'000;
constexpr double kMostTimesPlain = 1.2;
constexpr double kMostMegabytes = 20;
const QByteArray kLine = "DOWNLOADED|/a\n";

// NUL bytes are as good as any others here, and cost the writer least.
QStringList floodArguments() {
  return {QStringLiteral("-c"),
          QStringLiteral("head -c %1 /dev/zero; printf '\\nDOWNLOADED|/a\\n'").arg(kFlood)};
}

double throughTheLink() {
  ProcessLink link;
  QEventLoop loop;
  QList<QByteArray> lines;
  QObject::connect(&link, &WorkerLink::blockArrived, [&](const QByteArray& line) { lines.append(line); });
  QObject::connect(&link, &WorkerLink::exited, &loop, &QEventLoop::quit);
  const double taken = millisecondsOf([&] {
    const WorkerLaunch flood{QStringLiteral("/bin/sh"), floodArguments(), QDir::tempPath(),
                             QProcessEnvironment::systemEnvironment()};
    require(link.start(flood).ok(), "the flood did not start");
    loop.exec();
  });
  require(lines == QList<QByteArray>{kLine}, "the line behind the flood is lost");
  return taken;
}

// `take` reads what is there, and gives how many bytes that was.
template <typename Take>
double throughAProcess(Take&& take) {
  QProcess process;
  QEventLoop loop;
  qint64 bytes = 0;
  process.setProcessChannelMode(QProcess::MergedChannels);
  QObject::connect(&process, &QProcess::readyRead, [&] { bytes += take(process); });
  QObject::connect(&process, &QProcess::finished, &loop, &QEventLoop::quit);
  const double taken = millisecondsOf([&] {
    process.start(QStringLiteral("/bin/sh"), floodArguments());
    loop.exec();
    bytes += process.readAll().size();
  });
  require(bytes == kFlood + 1 + kLine.size(), "bytes are lost");
  return taken;
}

double plain() {
  return throughAProcess([](QProcess& process) { return process.readAll().size(); });
}

double withCanReadLine() {
  return throughAProcess([](QProcess& process) {
    qint64 bytes = 0;
    while (process.canReadLine())
      bytes += process.readLine().size();
    return bytes;
  });
}

// The most memory that this process has held since the peak was last forgotten.
double peakMegabytes() {
  QFile status(QStringLiteral("/proc/self/status"));
  require(status.open(QIODevice::ReadOnly), "no memory figures");
  for (const QByteArray& line : status.readAll().split('\n')) {
    if (line.startsWith("VmHWM:")) return line.mid(6).simplified().split(' ').value(0).toDouble() / 1024;
  }
  require(false, "no peak of memory");
  return 0;
}

double megabytesDuring(double (*work)()) {
  QFile peak(QStringLiteral("/proc/self/clear_refs"));
  require(peak.open(QIODevice::WriteOnly) && peak.write("5") == 1, "the peak of memory cannot be forgotten");
  peak.close();
  const double before = peakMegabytes();
  work();
  return peakMegabytes() - before;
}

void measure(Goals& goals, const QString&) {
  std::vector<double> ours;
  std::vector<double> peer;
  const double memory = megabytesDuring(throughTheLink);
  for (int round = 0; round < kRounds; ++round) {
    ours.push_back(throughTheLink());
    peer.push_back(plain());
  }
  goals.atMostTimes("100 MB without a line end", ours, "readAll", peer, kMostTimesPlain);
  goals.atMost("  memory kept", memory, kMostMegabytes, "MB");
  goals.mention("  canReadLine loop", withCanReadLine());
}

}  // namespace
}  // namespace ambrel::bench

int main(int argc, char** argv) {
  return ambrel::bench::runBenchmark(argc, argv, ambrel::bench::measure);
}
