// SPDX-License-Identifier: Apache-2.0
#include "core/base/StatusLine.h"

namespace ambrel {

StatusText readinessText(const Readiness& readiness) {
  if (readiness.cameraConnected && readiness.watching)
    return {QStringLiteral("Capturing"), StatusKind::Watching};
  if (readiness.targetFolderSet) {
    return {readiness.listEmpty ? QStringLiteral("No names") : QStringLiteral("Waiting"), StatusKind::Busy};
  }
  return {readiness.listEmpty ? QStringLiteral("Setup needed") : QStringLiteral("No folder"),
          StatusKind::Busy};
}

StatusLine::StatusLine(Clock& clock, std::function<Readiness()> readiness)
    : _clock(clock), _readiness(std::move(readiness)) {}

void StatusLine::setStatus(const QString& text, StatusKind kind) {
  _lastFriendlyStatus = text;
  _lastStatusKind = kind;
  if (!_statusIsReadiness) {
    _clock.cancel(_revertTimer);
    _revertTimer = _clock.callAfter(kRevertDelay, this, [this] {
      if (!_readiness().photoBeingFiled) refreshReadyStatusIfIdle();
    });
  }
  Q_EMIT changed(_lastFriendlyStatus, _lastStatusKind);
}

void StatusLine::refreshReadyStatusIfIdle() {
  _statusIsReadiness = true;
  const StatusText ready = readinessText(_readiness());
  setStatus(ready.text, ready.kind);
  _statusIsReadiness = false;
}

void StatusLine::scheduleReadyStatusRefresh() {
  _clock.callAfter(kReadyRefreshDelay, this, [this] {
    if (!_readiness().photoBeingFiled) refreshReadyStatusIfIdle();
  });
}

}  // namespace ambrel
