// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace ambrel {

// The last component of a path, cut to `maxChars` characters with "..." at its end where that leaves room.
QString shortPathDisplay(const QString& path, int maxChars);

struct PathLineInputs {
  qint64 rows = 0;
  QString csvPath;    // the list's file, empty for none
  QString targetDir;  // empty for none
};

// "List: 12 names (from class.csv)  |  Save to: Photos".
QString pathLine(const PathLineInputs& inputs);

}  // namespace ambrel
