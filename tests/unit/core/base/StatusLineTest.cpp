// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <vector>

#include "core/base/StatusLine.h"
#include "support/Printing.h"
#include "support/TestClock.h"

namespace ambrel {
namespace {

using std::chrono_literals::operator""ms;

class StatusLineTest : public ::testing::Test {
 protected:
  TestClock clock;
  Readiness readiness;
  StatusLine line{clock, [this] { return readiness; }};
};

TEST(ReadinessText, SaysWhatIsMissing) {
  const std::vector<std::pair<Readiness, StatusText>> cases{
      {{true, true, true, false, false}, {"Capturing", StatusKind::Watching}},
      {{true, true, false, true, false}, {"Capturing", StatusKind::Watching}},
      {{true, false, true, false, false}, {"Waiting", StatusKind::Busy}},
      {{false, true, true, false, false}, {"Waiting", StatusKind::Busy}},
      {{false, false, true, true, false}, {"No names", StatusKind::Busy}},
      {{false, false, false, true, false}, {"Setup needed", StatusKind::Busy}},
      {{false, false, false, false, false}, {"No folder", StatusKind::Busy}},
  };
  for (const auto& [readiness, text] : cases) {
    EXPECT_EQ(readinessText(readiness).text, text.text);
    EXPECT_EQ(readinessText(readiness).kind, text.kind) << text.text.toStdString();
  }
}

TEST_F(StatusLineTest, ShowsAMessageAtOnce) {
  std::vector<StatusText> shown;
  QObject::connect(&line, &StatusLine::changed, [&shown](const QString& text, StatusKind kind) {
    shown.push_back({text, kind});
  });
  line.setStatus("Saved: a.JPG", StatusKind::Good);
  line.setStatus({}, StatusKind::Error);
  EXPECT_EQ(shown, (std::vector<StatusText>{{"Saved: a.JPG", StatusKind::Good}, {"", StatusKind::Error}}));
  EXPECT_EQ(line.text(), "");
  EXPECT_EQ(line.kind(), StatusKind::Error);
}

TEST_F(StatusLineTest, ReturnsToReadinessAfterThreeAndAHalfSeconds) {
  line.setStatus("Saved: a.JPG", StatusKind::Good);
  clock.advance(3499ms);
  EXPECT_EQ(line.text(), "Saved: a.JPG");
  clock.advance(1ms);
  EXPECT_EQ(line.text(), "Setup needed");
  EXPECT_EQ(line.kind(), StatusKind::Busy);
}

TEST_F(StatusLineTest, KeepsANewerMessageItsFullTime) {
  line.setStatus("first", StatusKind::Good);
  clock.advance(2000ms);
  line.setStatus("second", StatusKind::Error);
  clock.advance(3499ms);
  EXPECT_EQ(line.text(), "second");
  clock.advance(1ms);
  EXPECT_EQ(line.text(), "Setup needed");
}

TEST_F(StatusLineTest, KeepsTheMessageWhileAPhotoIsBeingFiled) {
  line.setStatus("Saved: a.JPG", StatusKind::Good);
  readiness.photoBeingFiled = true;
  clock.advance(3500ms);
  readiness.photoBeingFiled = false;
  clock.advance(60000ms);
  EXPECT_EQ(line.text(), "Saved: a.JPG");
}

TEST_F(StatusLineTest, NeverSchedulesAnythingForTheReadinessText) {
  line.refreshReadyStatusIfIdle();
  EXPECT_EQ(line.text(), "Setup needed");
  EXPECT_EQ(clock.pendingTimers(), 0U);
}

TEST_F(StatusLineTest, LetsTheReadinessTextTakeAMessagesPlaceWithoutEndingItsTime) {
  line.setStatus("Saved: a.JPG", StatusKind::Good);
  line.refreshReadyStatusIfIdle();
  EXPECT_EQ(line.text(), "Setup needed");
  readiness.targetFolderSet = true;
  clock.advance(3500ms);
  EXPECT_EQ(line.text(), "No names") << "the message's own return";
}

TEST_F(StatusLineTest, ReturnsToWhatIsReadyByThen) {
  line.setStatus("Saved: a.JPG", StatusKind::Good);
  readiness = {true, true, true, false, false};
  clock.advance(3500ms);
  EXPECT_EQ(line.text(), "Capturing");
  EXPECT_EQ(line.kind(), StatusKind::Watching);
}

TEST_F(StatusLineTest, ShowsReadinessAQuarterPastASecondWhenAsked) {
  line.setStatus("Saved: a.JPG", StatusKind::Good);
  line.scheduleReadyStatusRefresh();
  clock.advance(1249ms);
  EXPECT_EQ(line.text(), "Saved: a.JPG");
  clock.advance(1ms);
  EXPECT_EQ(line.text(), "Setup needed");
}

TEST_F(StatusLineTest, ShowsNoReadinessWhenAskedWhileAPhotoIsBeingFiled) {
  line.setStatus("Saved: a.JPG", StatusKind::Good);
  line.scheduleReadyStatusRefresh();
  readiness.photoBeingFiled = true;
  clock.advance(1250ms);
  EXPECT_EQ(line.text(), "Saved: a.JPG");
}

TEST_F(StatusLineTest, HoldsOneTimerHoweverManyMessagesCome) {
  for (int message = 0; message < 1000; ++message)
    line.setStatus(QString::number(message), StatusKind::Busy);
  EXPECT_EQ(clock.pendingTimers(), 1U);
}

}  // namespace
}  // namespace ambrel
