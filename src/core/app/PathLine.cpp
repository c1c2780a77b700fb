// SPDX-License-Identifier: Apache-2.0
#include "core/app/PathLine.h"

#include <QFileInfo>

#include "core/base/Text.h"

namespace ambrel {
namespace {

constexpr int kFolderChars = 40;

QString listPart(const PathLineInputs& inputs) {
  if (inputs.rows < 1) return QStringLiteral("Empty (import a CSV or paste names)");
  const QString from = inputs.csvPath.isEmpty()
                           ? QString()
                           : QStringLiteral(" (from %1)").arg(QFileInfo(inputs.csvPath).fileName());
  return QStringLiteral("%1 name%2").arg(inputs.rows).arg(pluralEnding(inputs.rows)) + from;
}

QString folderPart(const QString& targetDir) {
  return targetDir.isEmpty() ? QStringLiteral("Not selected") : shortPathDisplay(targetDir, kFolderChars);
}

}  // namespace

QString shortPathDisplay(const QString& path, int maxChars) {
  const QString last = path.section(QLatin1Char('/'), -1, -1, QString::SectionSkipEmpty);
  if (last.size() <= maxChars) return last;
  return maxChars > 3 ? last.left(maxChars - 3) + QStringLiteral("...") : last.left(maxChars);
}

QString pathLine(const PathLineInputs& inputs) {
  return QStringLiteral("List: ") + listPart(inputs) + QStringLiteral("  |  Save to: ") +
         folderPart(inputs.targetDir);
}

}  // namespace ambrel
