// SPDX-License-Identifier: Apache-2.0
#include "support/ProcessUse.h"

#include <QDir>
#include <QFile>
#include <unistd.h>
#include <vector>

#include "support/Goals.h"

namespace ambrel::bench {
namespace {

// The fields after the program's name, which is in parentheses and may hold anything.
QList<QByteArray> statusOf(qint64 pid) {
  QFile file(QStringLiteral("/proc/%1/stat").arg(pid));
  if (!file.open(QIODevice::ReadOnly)) return {};
  const QByteArray line = file.readAll();
  return line.mid(line.lastIndexOf(')') + 2).split(' ');
}

constexpr int kParent = 1;
constexpr int kUserTime = 11;
constexpr int kSystemTime = 12;

std::vector<qint64> family(qint64 pid) {
  std::vector<qint64> members{pid};
  const QStringList all = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
  for (std::size_t i = 0; i < members.size(); ++i)
    for (const QString& name : all)
      if (statusOf(name.toLongLong()).value(kParent).toLongLong() == members[i])
        members.push_back(name.toLongLong());
  return members;
}

}  // namespace

qint64 residentBytes(qint64 pid) {
  QFile file(QStringLiteral("/proc/%1/statm").arg(pid));
  require(file.open(QIODevice::ReadOnly), "no such process");
  return file.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
}

double processorSeconds(qint64 pid) {
  double ticks = 0;
  for (const qint64 member : family(pid)) {
    const QList<QByteArray> status = statusOf(member);
    require(status.size() > kSystemTime, "a process has ended");
    ticks += status[kUserTime].toDouble() + status[kSystemTime].toDouble();
  }
  return ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
}

int processesOf(qint64 pid) {
  return static_cast<int>(family(pid).size());
}

}  // namespace ambrel::bench
