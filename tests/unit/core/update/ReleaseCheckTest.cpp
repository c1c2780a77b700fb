// SPDX-License-Identifier: Apache-2.0
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "LoopbackServer.h"
#include "core/update/ReleaseCheck.h"
#include "support/EventLoop.h"
#include "support/ScriptedOperator.h"
#include "support/TestClock.h"

namespace ambrel {
namespace {

using Alert = ScriptedOperator::Alert;

QByteArray releaseBody(const QByteArray& tag, bool withDiskImage = true) {
  return R"({"tag_name": ")" + tag + R"(", "html_url": "https://example.org/page", "assets": [)" +
         (withDiskImage ? R"({"name": "a.dmg", "browser_download_url": "https://example.org/a.dmg"})" : "") +
         "]}";
}

class ReleaseCheckTest : public ::testing::Test {
 protected:
  void serve(const LoopbackServer::Answering& answer, const QString& ownVersion = QStringLiteral("7.04")) {
    server = std::make_unique<LoopbackServer>(answer);
    start(server->address(), ownVersion);
  }
  void start(const QUrl& host, const QString& ownVersion = QStringLiteral("7.04")) {
    check = std::make_unique<ReleaseCheck>(clock, person, preferences, host, ownVersion,
                                           [this](const QUrl& address) { opened.push_back(address); });
    checks = 0;
    QObject::connect(check.get(), &ReleaseCheck::checked, [this] { ++checks; });
  }
  bool waitForWords() {
    return runEventsUntil([this] { return !person.alerts.empty() || !person.questions.empty(); });
  }
  // Until `count` checks have ended.
  bool settle(int count) {
    return runEventsUntil([&] { return checks == count; });
  }

  QTemporaryDir folder;
  TestClock clock;
  ScriptedOperator person;
  Preferences preferences{folder.filePath(QStringLiteral("preferences"))};
  std::unique_ptr<LoopbackServer> server;
  std::unique_ptr<ReleaseCheck> check;
  std::vector<QUrl> opened;
  int checks = 0;
};

TEST_F(ReleaseCheckTest, OffersANewerVersionAndOpensItsDiskImage) {
  serve(answering(200, releaseBody("v7.10")), QStringLiteral("7.9"));
  person.willAnswer(0);
  check->checkForUpdatesInteractive();
  ASSERT_TRUE(waitForWords());
  ASSERT_EQ(person.questions.size(), 1U);
  EXPECT_EQ(person.questions[0].title, QStringLiteral("Update available: 7.10"));
  EXPECT_EQ(
      person.questions[0].message,
      QStringLiteral("You have 7.9. Download the new version? It opens in your browser; then drag it to "
                     "Applications to install."));
  EXPECT_EQ(person.questions[0].buttons, (QStringList{QStringLiteral("Download"), QStringLiteral("Later")}));
  EXPECT_EQ(opened, std::vector<QUrl>{QUrl(QStringLiteral("https://example.org/a.dmg"))});
}

TEST_F(ReleaseCheckTest, OpensThePageOfAReleaseWithoutADiskImage) {
  serve(answering(200, releaseBody("8", false)));
  person.willAnswer(0);
  check->checkForUpdatesInteractive();
  ASSERT_TRUE(waitForWords());
  EXPECT_EQ(opened, std::vector<QUrl>{QUrl(QStringLiteral("https://example.org/page"))});
}

TEST_F(ReleaseCheckTest, OpensNothingLater) {
  serve(answering(200, releaseBody("8")));
  person.willAnswer(1);
  check->checkForUpdatesInteractive();
  ASSERT_TRUE(waitForWords());
  EXPECT_TRUE(opened.empty());
}

TEST_F(ReleaseCheckTest, ShowsAQuestionMarkForAVersionOfItsOwnThatItDoesNotKnow) {
  serve(answering(200, releaseBody("8")), QString());
  person.willAnswer(1);
  check->checkForUpdatesInteractive();
  ASSERT_TRUE(waitForWords());
  EXPECT_TRUE(person.questions[0].message.startsWith(QStringLiteral("You have ?. ")));
}

TEST_F(ReleaseCheckTest, SaysOnRequestThatThisIsTheLatestVersion) {
  serve(answering(200, releaseBody("v7.4")));
  check->checkForUpdatesInteractive();
  ASSERT_TRUE(waitForWords());
  EXPECT_EQ(person.alerts,
            (std::vector<Alert>{{QStringLiteral("You're Up to Date"),
                                 QStringLiteral("Ambrel Photo Tether 7.04 is the latest version.")}}));
}

TEST_F(ReleaseCheckTest, SaysOnRequestWhyACheckFailed) {
  serve(answering(404, {}));
  check->checkForUpdatesInteractive();
  ASSERT_TRUE(waitForWords());
  EXPECT_EQ(person.alerts, (std::vector<Alert>{{QStringLiteral("Update Check Failed"),
                                                QStringLiteral("Update server returned status 404.")}}));
}

TEST_F(ReleaseCheckTest, OffersANewerVersionByItself) {
  serve(answering(200, releaseBody("8")));
  person.willAnswer(1);
  check->checkForUpdatesInBackgroundIfDue();
  ASSERT_TRUE(waitForWords());
  EXPECT_EQ(person.questions.size(), 1U);
}

TEST_F(ReleaseCheckTest, IsSilentByItselfWhenThereIsNothingNewOrItFails) {
  for (const auto& answer :
       {answering(200, releaseBody("7.04")), answering(404, {}), answering(200, "nonsense")}) {
    preferences.setLastUpdateCheck(clock.wallTime().addDays(-2));
    serve(answer);
    check->checkForUpdatesInBackgroundIfDue();
    ASSERT_TRUE(settle(1));
    EXPECT_TRUE(person.alerts.empty());
    EXPECT_TRUE(person.questions.empty());
  }
}

TEST_F(ReleaseCheckTest, AsksOnceInTwentyFourHoursEvenWhenItFailed) {
  serve(answering(500, {}));
  check->checkForUpdatesInBackgroundIfDue();
  ASSERT_TRUE(settle(1));
  clock.advance(std::chrono::hours(24) - std::chrono::seconds(1));
  check->checkForUpdatesInBackgroundIfDue();
  EXPECT_EQ(preferences.lastUpdateCheck(), clock.wallTime().addSecs(1 - 24 * 60 * 60));
  clock.advance(std::chrono::seconds(1));
  check->checkForUpdatesInBackgroundIfDue();
  ASSERT_TRUE(settle(2));
  EXPECT_EQ(server->requests().size(), 2U);
}

TEST_F(ReleaseCheckTest, RemembersTheTimeBeforeItAsks) {
  serve(answering(200, releaseBody("7.04")));
  check->checkForUpdatesInBackgroundIfDue();
  EXPECT_EQ(preferences.lastUpdateCheck(), clock.wallTime());
  EXPECT_TRUE(server->requests().empty());
}

TEST_F(ReleaseCheckTest, AsksOnRequestHoweverRecentTheLastCheckWas) {
  serve(answering(200, releaseBody("7.04")));
  preferences.setLastUpdateCheck(clock.wallTime());
  check->checkForUpdatesInteractive();
  ASSERT_TRUE(waitForWords());
  EXPECT_EQ(preferences.lastUpdateCheck(), clock.wallTime());
}

TEST_F(ReleaseCheckTest, NeverAsksByItselfWithoutAHost) {
  start(QUrl());
  check->checkForUpdatesInBackgroundIfDue();
  EXPECT_FALSE(preferences.lastUpdateCheck().has_value());
  check->checkForUpdatesInteractive();
  clock.advance(std::chrono::milliseconds(0));
  ASSERT_TRUE(waitForWords());
  EXPECT_EQ(person.alerts, (std::vector<Alert>{{QStringLiteral("Update Check Failed"),
                                                QStringLiteral("No update server is set up.")}}));
}

}  // namespace
}  // namespace ambrel
