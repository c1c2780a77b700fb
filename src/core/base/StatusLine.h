// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <chrono>
#include <functional>

#include "core/base/Clock.h"

namespace ambrel {

enum class StatusKind { Good, Busy, Neutral, Error, Watching };

// What the readiness text depends on.
struct Readiness {
  bool cameraConnected = false;
  bool watching = false;
  bool targetFolderSet = false;
  bool listEmpty = true;
  bool photoBeingFiled = false;
};

struct StatusText {
  QString text;
  StatusKind kind = StatusKind::Neutral;
  bool operator==(const StatusText&) const = default;
};

// "Capturing", "Waiting", "No names", "No folder" or "Setup needed".
StatusText readinessText(const Readiness& readiness);

// The one-line message to the operator. A message gives way to the readiness text after kRevertDelay unless a
// newer one came or a photo is being filed.
class StatusLine : public QObject {
  Q_OBJECT
 public:
  static constexpr std::chrono::milliseconds kRevertDelay{3500};
  static constexpr std::chrono::milliseconds kReadyRefreshDelay{1250};

  StatusLine(Clock& clock, std::function<Readiness()> readiness);

  void setStatus(const QString& text, StatusKind kind);
  void refreshReadyStatusIfIdle();
  // The readiness text in kReadyRefreshDelay, unless a photo is then being filed.
  void scheduleReadyStatusRefresh();

  QString text() const { return _lastFriendlyStatus; }
  StatusKind kind() const { return _lastStatusKind; }

 Q_SIGNALS:
  void changed(const QString& text, ambrel::StatusKind kind);

 private:
  Clock& _clock;
  std::function<Readiness()> _readiness;
  QString _lastFriendlyStatus = QStringLiteral("Starting Ambrel Tether...");
  StatusKind _lastStatusKind = StatusKind::Busy;
  bool _statusIsReadiness = false;
  Clock::TimerId _revertTimer = Clock::kNoTimer;  // of the newest message only
};

}  // namespace ambrel
