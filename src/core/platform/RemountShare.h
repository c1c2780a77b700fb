// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <chrono>

namespace ambrel {

constexpr std::chrono::seconds kRemountPatience{30};

// Mounts the network share that held `folder` again, without any dialog and with the credentials that the
// system has; `url` is its percent-encoded address. Blocks for at most kRemountPatience. Whether the system
// says that it is mounted.
bool remountShare(const QString& url, const QString& folder);

// The innermost mount point above or at `folder` that the system's table of mounts (in the form of
// /etc/fstab) has an entry for which this user may mount; empty for none.
QString mountPointInTable(const QByteArray& table, const QString& folder, bool isRoot);

}  // namespace ambrel
