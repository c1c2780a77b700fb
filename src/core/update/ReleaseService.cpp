// SPDX-License-Identifier: Apache-2.0
#include "core/update/ReleaseService.h"

#include <QHostAddress>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <optional>
#include <utility>

namespace ambrel {
namespace {

bool mayBeAsked(const QUrl& host) {
  if (host.scheme() == QLatin1String("https")) return !host.host().isEmpty();
  return host.scheme() == QLatin1String("http") && QHostAddress(host.host()).isLoopback();
}

Failure unexpectedStatus(int status) {
  return {QStringLiteral("Update server returned status %1.").arg(status)};
}

// One request and what came of it so far. Ends by itself once it has answered.
class Conversation : public QObject {
 public:
  Conversation(QNetworkReply* reply, std::function<void(const Result<Release>&)> answered)
      : QObject(reply), _reply(reply), _answered(std::move(answered)) {
    connect(reply, &QNetworkReply::redirected, this, &Conversation::follow);
    connect(reply, &QNetworkReply::readyRead, this, &Conversation::collect);
    connect(reply, &QNetworkReply::finished, this, &Conversation::finish);
  }

  void giveUp(const QString& reason) {
    _ownReason = reason;
    _reply->abort();
  }

 private:
  void follow(const QUrl& to) {
    if (to.scheme() == QLatin1String("https")) {
      Q_EMIT _reply->redirectAllowed();
    } else {
      giveUp(QStringLiteral("The update server redirected to an address that is not secure."));
    }
  }

  void collect() {
    _body += _reply->readAll();
    if (_body.size() > ReleaseService::kLargestBody)
      giveUp(QStringLiteral("The update server's answer is too long."));
  }

  void finish() {
    _reply->disconnect(this);
    if (_reply->isOpen()) _body += _reply->readAll();
    const auto answered = std::exchange(_answered, nullptr);
    answered(result());
    _reply->deleteLater();
  }

  Result<Release> result() const {
    if (_ownReason) return Failure{*_ownReason};
    const int status = _reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const bool transferFailed = _reply->error() != QNetworkReply::NoError && (status == 0 || status == 200);
    if (transferFailed) return Failure{_reply->errorString()};
    if (status != 200 || _body.isEmpty()) return unexpectedStatus(status);
    return parseRelease(_body);
  }

  QNetworkReply* _reply;
  std::function<void(const Result<Release>&)> _answered;
  QByteArray _body;
  std::optional<QString> _ownReason;
};

}  // namespace

ReleaseService::ReleaseService(Clock& clock, const QUrl& host) : _clock(clock), _host(host) {}

ReleaseService::~ReleaseService() = default;

QUrl ReleaseService::configuredHost() {
  const QString built = QStringLiteral(AMBREL_RELEASE_API_HOST);
  return QUrl(qEnvironmentVariable("AMBREL_RELEASE_API", built));
}

void ReleaseService::fetchLatest(std::function<void(const Result<Release>&)> answered) {
  if (!mayBeAsked(_host)) {
    _clock.callAfter(std::chrono::milliseconds(0), this, [answered = std::move(answered)] {
      answered(Failure{QStringLiteral("No update server is set up.")});
    });
    return;
  }
  QUrl address = _host;
  address.setPath(QLatin1String(kLatestReleasePath));
  QNetworkRequest request(address);
  request.setRawHeader("Accept", "application/vnd.github+json");
  request.setMaximumRedirectsAllowed(kMostRedirects);
  if (!_network) {
    _network = std::make_unique<QNetworkAccessManager>();
    _network->setRedirectPolicy(QNetworkRequest::UserVerifiedRedirectPolicy);
  }
  auto* conversation = new Conversation(_network->get(request), std::move(answered));
  _clock.callAfter(kTimeLimit, conversation,
                   [conversation] { conversation->giveUp(QStringLiteral("The request timed out.")); });
}

}  // namespace ambrel
