// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <libproc.h>
#include <unistd.h>

#include "core/platform/WorkerProcesses.h"

namespace ambrel {
namespace {

QByteArray executableName(pid_t process) {
  char path[PROC_PIDPATHINFO_MAXSIZE];
  const int length = proc_pidpath(process, path, sizeof path);
  if (length <= 0) return {};
  const QByteArray whole(path, length);
  return whole.mid(whole.lastIndexOf('/') + 1);
}

}  // namespace

std::vector<qint64> processesRunning(const QString& fileName) {
  const QByteArray wanted = QFile::encodeName(fileName);
  const int needed = proc_listpids(PROC_UID_ONLY, geteuid(), nullptr, 0);
  if (needed <= 0) return {};
  std::vector<pid_t> processes(static_cast<std::size_t>(needed) / sizeof(pid_t));
  const int filled = proc_listpids(PROC_UID_ONLY, geteuid(), processes.data(), needed);
  processes.resize(static_cast<std::size_t>(filled > 0 ? filled : 0) / sizeof(pid_t));
  std::vector<qint64> found;
  for (const pid_t process : processes) {
    if (process > 0 && executableName(process) == wanted) found.push_back(process);
  }
  return found;
}

}  // namespace ambrel
