// SPDX-License-Identifier: Apache-2.0
#include "core/update/ReleaseCheck.h"

#include <QDateTime>
#include <utility>

#include "core/update/Version.h"

namespace ambrel {

ReleaseCheck::ReleaseCheck(Clock& clock, Operator& person, Preferences& preferences, const QUrl& host,
                           const QString& ownVersion, std::function<void(const QUrl&)> openInBrowser)
    : _clock(clock),
      _operator(person),
      _preferences(preferences),
      _ownVersion(ownVersion),
      _openInBrowser(std::move(openInBrowser)),
      _service(clock, host) {}

void ReleaseCheck::checkForUpdatesInBackgroundIfDue() {
  if (!_service.hasHost()) return;
  const QDateTime now = _clock.wallTime();
  const auto last = _preferences.lastUpdateCheck();
  if (last && last->secsTo(now) < std::chrono::seconds(kBetweenChecks).count()) return;
  // Remembered first: a check that fails is not repeated within the day either.
  _preferences.setLastUpdateCheck(now);
  checkForUpdatesShowingNoUpdate(false);
}

void ReleaseCheck::checkForUpdatesShowingNoUpdate(bool interactive) {
  _service.fetchLatest([this, interactive](const Result<Release>& latest) {
    report(latest, interactive);
    Q_EMIT checked();
  });
}

void ReleaseCheck::report(const Result<Release>& latest, bool interactive) {
  if (latest && compare_versions(latest.value().tag, _ownVersion) >= 1) {
    promptUpdateToVersion(latest.value());
  } else if (interactive && latest) {
    _operator.showAlert(QStringLiteral("You're Up to Date"),
                        QStringLiteral("Ambrel Photo Tether %1 is the latest version.").arg(_ownVersion));
  } else if (interactive) {
    _operator.showAlert(QStringLiteral("Update Check Failed"), latest.error());
  }
}

void ReleaseCheck::promptUpdateToVersion(const Release& release) {
  const QString own = _ownVersion.isEmpty() ? QStringLiteral("?") : _ownVersion;
  const Question question{
      .title = QStringLiteral("Update available: ") + version_of_tag(release.tag),
      .message =
          QStringLiteral("You have ") + own +
          QStringLiteral(". Download the new version? It opens in your browser; then drag it to Applications "
                         "to install."),
      .buttons = {QStringLiteral("Download"), QStringLiteral("Later")}};
  _operator.ask(question, [this, address = downloadAddress(release)](const Answer& answer) {
    if (answer.button == 0 && !address.isEmpty()) _openInBrowser(address);
  });
}

}  // namespace ambrel
