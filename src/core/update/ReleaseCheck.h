// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <QUrl>
#include <chrono>
#include <functional>

#include "core/base/Clock.h"
#include "core/base/Operator.h"
#include "core/base/Preferences.h"
#include "core/update/ReleaseService.h"

namespace ambrel {

// Compares the latest release with this version and offers to download a newer one, in the operator's
// browser. By itself at most once a day and then silent unless there is something to offer; on request it
// always answers.
class ReleaseCheck : public QObject {
  Q_OBJECT
 public:
  static constexpr std::chrono::hours kBetweenChecks{24};

  ReleaseCheck(Clock& clock, Operator& person, Preferences& preferences, const QUrl& host,
               const QString& ownVersion, std::function<void(const QUrl&)> openInBrowser);

  void checkForUpdatesInteractive() { checkForUpdatesShowingNoUpdate(true); }
  void checkForUpdatesInBackgroundIfDue();

 Q_SIGNALS:
  void checked();  // a check has ended, whatever came of it

 private:
  void checkForUpdatesShowingNoUpdate(bool interactive);
  void report(const Result<Release>& latest, bool interactive);
  void promptUpdateToVersion(const Release& release);

  Clock& _clock;
  Operator& _operator;
  Preferences& _preferences;
  const QString _ownVersion;
  const std::function<void(const QUrl&)> _openInBrowser;
  ReleaseService _service;
};

}  // namespace ambrel
