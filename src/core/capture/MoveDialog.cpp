// SPDX-License-Identifier: Apache-2.0
#include "core/capture/MoveDialog.h"

#include <algorithm>

#include "core/base/Text.h"

namespace ambrel {
namespace {

constexpr int kWidth = 360;
constexpr int kRow = 24;
constexpr int kBelowBoxes = 22;
constexpr int kLabelHeight = 18;
constexpr int kFieldAboveLabel = 30;
constexpr int kHeadRoomWithField = 58;
constexpr int kHeadRoom = 6;
constexpr QSize kBox(352, 20);
constexpr int kBoxIndent = 8;

QString boxTitle(const SuffixFolder& folder) {
  if (!folder.exists) return folder.suffix + QStringLiteral("   (no photos)");
  return QStringLiteral("%1   (%2 photo%3)")
      .arg(folder.suffix, QString::number(folder.photos), pluralEnding(folder.photos));
}

Accessory accessory(const MoveDialog& dialog) {
  const int rows = std::max(1, static_cast<int>(dialog.suffixes.size()));
  const int labelY = kBelowBoxes + kRow * rows;
  Accessory area{QSize(kWidth, labelY + (dialog.fixedTargetName ? kHeadRoom : kHeadRoomWithField))};
  area.labels.push_back({QRect(0, labelY, kWidth, kLabelHeight),
                         QStringLiteral("Suffix folders to include (pre-checked = captured with it):"),
                         true});
  int y = labelY;
  for (const SuffixFolder& folder : dialog.suffixes) {
    y -= kRow;
    area.checkBoxes.push_back({QRect(QPoint(kBoxIndent, y), kBox), boxTitle(folder), folder.exists});
  }
  if (!dialog.fixedTargetName) {
    area.textFields.push_back({QRect(0, labelY + kFieldAboveLabel, kWidth, kRow), dialog.sourceName});
    area.focusFirstField = true;
  }
  return area;
}

}  // namespace

QStringList candidateSuffixes(const QStringList& tagSuffixes, const QString& sourceFolderName,
                              const QStringList& folderNames) {
  QStringList candidates = tagSuffixes;
  for (const QString& name : folderNames)
    candidates.append(name.mid(sourceFolderName.size()));
  candidates.removeAll(QString());
  candidates.removeDuplicates();
  return candidates;
}

Question moveQuestion(const MoveDialog& dialog) {
  Question question;
  if (dialog.fixedTargetName) {
    question.title = QStringLiteral("Move photos into \"%1\"").arg(*dialog.fixedTargetName);
    question.message = QStringLiteral("Moves \"%1\"'s photos into \"%2\" (merged, never overwritten).")
                           .arg(dialog.sourceName, *dialog.fixedTargetName);
    question.buttons = QStringList{QStringLiteral("Move"), QStringLiteral("Cancel")};
  } else {
    question.title = QStringLiteral("Rename / Move Photos");
    question.message =
        QStringLiteral(
            "Move \"%1\" and its photos to this name. If the name already exists, the photos "
            "merge into it (never overwritten) and the list jumps to that row; otherwise a new "
            "row is created below.")
            .arg(dialog.sourceName);
    question.buttons = QStringList{QStringLiteral("Rename"), QStringLiteral("Cancel")};
  }
  question.accessory = accessory(dialog);
  return question;
}

QStringList selectedSuffixes(const MoveDialog& dialog, const Answer& answer) {
  QStringList selected;
  for (std::size_t i = 0; i < std::min(dialog.suffixes.size(), answer.checks.size()); ++i) {
    if (answer.checks[i]) selected.append(dialog.suffixes[i].suffix);
  }
  return selected;
}

}  // namespace ambrel
