// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

namespace ambrel {

// The SHA-256 (lower-case hexadecimal) of every file below a folder; an unreadable file gives an empty text.
QStringList fileHashesBelow(const QString& folder);

// How many of the taken photos were filed exactly once.
qsizetype filedExactlyOnce(const QStringList& takenHashes, const QStringList& filedHashes);

// The files below a folder as lines for a person, one folder level indented below the other.
QStringList fileTree(const QString& folder);

}  // namespace ambrel
