// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <optional>

#include "LoopbackServer.h"
#include "core/update/ReleaseService.h"
#include "support/EventLoop.h"
#include "support/TestClock.h"

namespace ambrel {
namespace {

const QByteArray kRelease = R"({"tag_name": "v8.1", "html_url": "https://example.org/"})";

class ReleaseServiceTest : public ::testing::Test {
 protected:
  // Asks, and waits for the answer in real time; the time limits are the test's own clock's.
  std::optional<Result<Release>> fetch(const QUrl& host) {
    ReleaseService service(clock, host);
    std::optional<Result<Release>> result;
    service.fetchLatest([&](const Result<Release>& answer) {
      EXPECT_FALSE(result.has_value()) << "answered twice";
      result = answer;
    });
    EXPECT_FALSE(result.has_value()) << "answered from within the call";
    clock.advance(std::chrono::milliseconds(0));
    runEventsUntil([&] { return result.has_value(); });
    return result;
  }

  QString errorOf(const LoopbackServer::Answering& answer) {
    LoopbackServer server(answer);
    const auto result = fetch(server.address());
    return result ? result->error() : QStringLiteral("no answer");
  }

  TestClock clock;
};

TEST_F(ReleaseServiceTest, AsksForTheLatestReleaseAndNothingElse) {
  LoopbackServer server(answering(200, kRelease));
  const auto result = fetch(server.address());
  ASSERT_TRUE(result && *result) << (result ? result->error().toStdString() : "no answer");
  EXPECT_EQ(result->value().tag, QStringLiteral("v8.1"));
  ASSERT_EQ(server.requests().size(), 1U);
  const QByteArray& request = server.requests().front();
  EXPECT_TRUE(
      request.startsWith("GET /repos/ambrel-inc/ambrel-photo-tether-releases/releases/latest HTTP/1.1\r\n"));
  EXPECT_TRUE(request.contains("\r\nAccept: application/vnd.github+json\r\n"));
  EXPECT_FALSE(request.contains("Authorization"));
}

TEST_F(ReleaseServiceTest, NamesTheStatusThatIsNot200) {
  EXPECT_EQ(errorOf(answering(404, kRelease)), QStringLiteral("Update server returned status 404."));
  EXPECT_EQ(errorOf(answering(500, "oh")), QStringLiteral("Update server returned status 500."));
  EXPECT_EQ(errorOf(answering(403, {})), QStringLiteral("Update server returned status 403."));
  EXPECT_EQ(errorOf(answering(204, {})), QStringLiteral("Update server returned status 204."));
}

TEST_F(ReleaseServiceTest, NamesTheStatusOfAnAnswerWithoutABody) {
  EXPECT_EQ(errorOf(answering(200, {})), QStringLiteral("Update server returned status 200."));
}

TEST_F(ReleaseServiceTest, SaysThatTheAnswerCannotBeRead) {
  const QString unreadable = QStringLiteral("Could not read the latest version information.");
  EXPECT_EQ(errorOf(answering(200, "<html>")), unreadable);
  EXPECT_EQ(errorOf(answering(200, R"({"tag_name": {}})")), unreadable);
  EXPECT_EQ(errorOf(answering(200, QByteArray(100000, '['))), unreadable);
}

TEST_F(ReleaseServiceTest, GivesTheSystemsOwnWordsWhenNobodyAnswers) {
  QUrl closed;
  {
    LoopbackServer server(answering(200, kRelease));
    closed = server.address();
  }
  const auto result = fetch(closed);
  ASSERT_TRUE(result);
  EXPECT_TRUE(result->error().contains(QStringLiteral("refused"))) << result->error().toStdString();
}

TEST_F(ReleaseServiceTest, FailsWhenTheBodyIsShorterThanAnnounced) {
  const QString error = errorOf([](QTcpSocket& socket) {
    socket.write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n" + kRelease);
    socket.disconnectFromHost();
  });
  EXPECT_FALSE(error.isEmpty());
  EXPECT_NE(error, QStringLiteral("no answer"));
}

TEST_F(ReleaseServiceTest, StopsReadingAfterAMegabyte) {
  qint64 sent = 0;
  const QByteArray piece(1024 * 1024, 'x');
  const QString error = errorOf([&](QTcpSocket& socket) {
    socket.write("HTTP/1.1 200 OK\r\nContent-Length: 1073741824\r\n\r\n");
    QObject::connect(&socket, &QTcpSocket::bytesWritten, &socket, [&](qint64 bytes) {
      sent += bytes;
      if (socket.bytesToWrite() < piece.size()) socket.write(piece);
    });
  });
  EXPECT_EQ(error, QStringLiteral("The update server's answer is too long."));
  EXPECT_LT(sent, 200 * 1024 * 1024);
}

TEST_F(ReleaseServiceTest, EndsAfterFifteenSecondsHoweverSlowlyTheAnswerDrips) {
  QTcpSocket* dripping = nullptr;
  LoopbackServer server([&](QTcpSocket& socket) {
    socket.write("HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n{");
    dripping = &socket;
  });
  ReleaseService service(clock, server.address());
  std::optional<Result<Release>> result;
  service.fetchLatest([&](const Result<Release>& answer) { result = answer; });
  ASSERT_TRUE(runEventsUntil([&] { return dripping != nullptr; }));
  for (int second = 1; second < 15; ++second) {
    clock.advance(std::chrono::seconds(1));
    dripping->write(" ");
    dripping->flush();
    EXPECT_FALSE(result.has_value()) << second;
  }
  clock.advance(std::chrono::seconds(1));
  ASSERT_TRUE(runEventsUntil([&] { return result.has_value(); }));
  EXPECT_EQ(result->error(), QStringLiteral("The request timed out."));
}

TEST_F(ReleaseServiceTest, EndsAfterFifteenSecondsOfSilence) {
  LoopbackServer server([](QTcpSocket&) {});
  ReleaseService service(clock, server.address());
  std::optional<Result<Release>> result;
  service.fetchLatest([&](const Result<Release>& answer) { result = answer; });
  ASSERT_TRUE(runEventsUntil([&] { return !server.requests().empty(); }));
  clock.advance(std::chrono::seconds(15));
  ASSERT_TRUE(runEventsUntil([&] { return result.has_value(); }));
  EXPECT_EQ(result->error(), QStringLiteral("The request timed out."));
}

TEST_F(ReleaseServiceTest, FollowsNoRedirectToAnAddressThatIsNotSecure) {
  LoopbackServer elsewhere(answering(200, kRelease));
  for (const QByteArray& to :
       {elsewhere.address().toEncoded(), QByteArray("file:///etc/passwd"), QByteArray("ftp://127.0.0.1/a")}) {
    const QString error = errorOf(answering(302, {}, "Location: " + to + "\r\n"));
    EXPECT_FALSE(error.isEmpty()) << to.constData();
    EXPECT_NE(error, QStringLiteral("no answer")) << to.constData();
  }
  EXPECT_TRUE(elsewhere.requests().empty());
}

TEST_F(ReleaseServiceTest, EndsARedirectLoop) {
  std::unique_ptr<LoopbackServer> server;
  server = std::make_unique<LoopbackServer>([&](QTcpSocket& socket) {
    answering(301, {}, "Location: " + server->address().toEncoded() + "/again\r\n")(socket);
  });
  const auto result = fetch(server->address());
  ASSERT_TRUE(result);
  EXPECT_FALSE(*result);
  EXPECT_LE(server->requests().size(), static_cast<std::size_t>(ReleaseService::kMostRedirects) + 1);
}

TEST_F(ReleaseServiceTest, TakesACertificateThatNobodyVouchesForAsAFailure) {
  QTemporaryDir folder;
  const QString key = folder.filePath(QStringLiteral("key.pem"));
  const QString certificate = folder.filePath(QStringLiteral("certificate.pem"));
  const int made = QProcess::execute(
      QStringLiteral("openssl"),
      {QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"), QStringLiteral("rsa:2048"),
       QStringLiteral("-nodes"), QStringLiteral("-subj"), QStringLiteral("/CN=127.0.0.1"),
       QStringLiteral("-keyout"), key, QStringLiteral("-out"), certificate});
  ASSERT_EQ(made, 0);
  QFile keyFile(key);
  ASSERT_TRUE(keyFile.open(QIODevice::ReadOnly));
  QSslConfiguration configuration;
  configuration.setPrivateKey(QSslKey(&keyFile, QSsl::Rsa));
  configuration.setLocalCertificateChain(QSslCertificate::fromPath(certificate));
  auto secure = std::make_unique<QSslServer>();
  secure->setSslConfiguration(configuration);
  LoopbackServer server(answering(200, kRelease), std::move(secure));
  const auto result = fetch(server.address(QStringLiteral("https")));
  ASSERT_TRUE(result);
  EXPECT_FALSE(*result);
  EXPECT_TRUE(server.requests().empty());
}

TEST_F(ReleaseServiceTest, AsksNoHostOverPlainHttpButALoopbackAddress) {
  for (const char* host :
       {"http://example.invalid", "http://localhost.example.invalid", "ftp://127.0.0.1", "", "nonsense"}) {
    const auto result = fetch(QUrl(QString::fromLatin1(host)));
    ASSERT_TRUE(result) << host;
    EXPECT_EQ(result->error(), QStringLiteral("No update server is set up.")) << host;
  }
}

TEST_F(ReleaseServiceTest, TakesItsHostFromTheEnvironmentWhereOneIsSet) {
  qputenv("AMBREL_RELEASE_API", "http://127.0.0.1:9");
  EXPECT_EQ(ReleaseService::configuredHost(), QUrl(QStringLiteral("http://127.0.0.1:9")));
  qputenv("AMBREL_RELEASE_API", "");
  EXPECT_TRUE(ReleaseService::configuredHost().isEmpty());
  qunsetenv("AMBREL_RELEASE_API");
  EXPECT_EQ(ReleaseService::configuredHost().scheme(), QStringLiteral("https"));
}

TEST_F(ReleaseServiceTest, AnswersNobodyOnceItIsGone) {
  LoopbackServer server([](QTcpSocket&) {});
  bool answered = false;
  {
    ReleaseService service(clock, server.address());
    service.fetchLatest([&](const Result<Release>&) { answered = true; });
    ASSERT_TRUE(runEventsUntil([&] { return !server.requests().empty(); }));
  }
  clock.advance(std::chrono::seconds(20));
  EXPECT_FALSE(answered);
}

}  // namespace
}  // namespace ambrel
