// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <unistd.h>

#include "core/platform/ChildProgram.h"
#include "core/platform/RemountShare.h"

namespace ambrel {
namespace {

QByteArray systemMountTable() {
  QFile table(QStringLiteral("/etc/fstab"));
  return table.open(QIODevice::ReadOnly) ? table.readAll() : QByteArray();
}

bool succeeds(const ProgramCall& call) {
  const auto end = runProgram(call, kRemountPatience);
  return end && end->exitCode == 0;
}

}  // namespace

bool remountShare(const QString& url, const QString& folder) {
  const QString point = mountPointInTable(systemMountTable(), folder, ::geteuid() == 0);
  if (!point.isEmpty()) return succeeds({QStringLiteral("mount"), {"--", point}});
  return succeeds({QStringLiteral("gio"), {"mount", "--", url}});
}

}  // namespace ambrel
