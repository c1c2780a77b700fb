// SPDX-License-Identifier: Apache-2.0
#include "core/capture/CaptureSettings.h"

#include <algorithm>
#include <array>
#include <limits>

namespace ambrel {
namespace {

struct SaveMode {
  const char* word;
  const char* label;
};
constexpr std::array kSaveModes = {SaveMode{"both", "Both"}, SaveMode{"disk", "Disk"},
                                   SaveMode{"card", "Card"}};

const SaveMode& saveMode(int index) {
  return kSaveModes[static_cast<std::size_t>(index)];
}

bool isDecimalDigit(QChar character) {
  return character >= QLatin1Char('0') && character <= QLatin1Char('9');
}

}  // namespace

void CaptureSettings::setTargetDir(const QString& path) {
  _targetDir = path;
  Q_EMIT targetDirChanged();
}

void CaptureSettings::setSaveModeIndex(int index) {
  const bool known = index >= 0 && index < static_cast<int>(kSaveModes.size());
  _saveModeIndex = known ? index : 0;
}

QString CaptureSettings::selectedSaveModeLower() const {
  return QString::fromLatin1(saveMode(_saveModeIndex).word);
}

QString CaptureSettings::saveModeLabel() const {
  return QString::fromLatin1(saveMode(_saveModeIndex).label);
}

void CaptureSettings::setCounterText(const QString& text) {
  QString digits;
  std::copy_if(text.begin(), text.end(), std::back_inserter(digits), isDecimalDigit);
  _counterText = digits;
  Q_EMIT counterTextChanged();
}

qint64 CaptureSettings::counterFieldValue() const {
  if (_counterText.isEmpty()) return 0;
  bool fits = false;
  const qint64 value = _counterText.toLongLong(&fits);
  return fits ? value : std::numeric_limits<qint64>::max();
}

qint64 CaptureSettings::counter() const {
  return std::max<qint64>(1, counterFieldValue());
}

void CaptureSettings::advanceCounterPast(qint64 used) {
  // The field as it stands, not counter(): an empty one becomes 2 after the first photo.
  if (counterFieldValue() <= used && used < std::numeric_limits<qint64>::max()) {
    setCounterText(QString::number(used + 1));
  }
}

}  // namespace ambrel
