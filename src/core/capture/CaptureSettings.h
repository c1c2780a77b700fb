// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>

namespace ambrel {

// What the operator sets up for shooting: the target folder, the save destination and the next photo number.
class CaptureSettings : public QObject {
  Q_OBJECT
 public:
  using QObject::QObject;

  // Absolute path, empty when none is chosen.
  QString targetDir() const { return _targetDir; }
  void setTargetDir(const QString& path);

  // 0 both, 1 disk, 2 card; any other value reads as 0.
  int saveModeIndex() const { return _saveModeIndex; }
  void setSaveModeIndex(int index);
  QString selectedSaveModeLower() const;  // "both", "disk", "card"
  QString saveModeLabel() const;          // "Both", "Disk", "Card"

  QString counterText() const { return _counterText; }
  // Keeps decimal digits only; what remains becomes the counter's text.
  void setCounterText(const QString& text);
  // The text read as a number; 0 when it is none, the largest there is when it has too many digits.
  qint64 counterFieldValue() const;
  // The number for the next photo: counterFieldValue(), at least 1.
  qint64 counter() const;
  // After a photo took number `used`: moves the counter past it, never back.
  void advanceCounterPast(qint64 used);

 Q_SIGNALS:
  void targetDirChanged();
  // After every setting of the text, also to what it was: a field may have to drop what was not a digit.
  void counterTextChanged();

 private:
  QString _targetDir;
  int _saveModeIndex = 0;
  QString _counterText = QStringLiteral("1");
};

}  // namespace ambrel
