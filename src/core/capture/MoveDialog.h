// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "core/base/Operator.h"

namespace ambrel {

// A suffix that the photos to move may lie under.
struct SuffixFolder {
  QString suffix;
  bool exists = false;
  qint64 photos = 0;
};

struct MoveDialog {
  QString sourceName;
  std::optional<QString> fixedTargetName;  // without one the operator types it
  std::vector<SuffixFolder> suffixes;
};

// Suffixes to offer, each once: those of the tags, on or off, then what follows the person's own name in the
// names of the person's folders.
QStringList candidateSuffixes(const QStringList& tagSuffixes, const QString& sourceFolderName,
                              const QStringList& folderNames);

Question moveQuestion(const MoveDialog& dialog);
// Those of the dialog's suffixes that the answer has checked.
QStringList selectedSuffixes(const MoveDialog& dialog, const Answer& answer);

}  // namespace ambrel
