// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "simulator/Commands.h"
#include "support/PtpIpHost.h"

namespace ambrel::simulator {
namespace {

class CommandsTest : public ::testing::Test {
 protected:
  void SetUp() override { ASSERT_TRUE(_server.listen(0)); }

  // The answer, after all exposures that the line asked for.
  std::string run(std::string_view line) {
    std::string answer;
    _commands.execute(line, [&](const std::string& text) { answer += text; });
    while (_shutter.busy()) {
      _shutter.proceed(Shutter::Clock::now());
    }
    _server.serve(Link::Clock::now());
    return answer;
  }
  bool reachable() { return LoopbackConnection(_server.port()).connected(); }

  CameraModel _camera{{1, 160, 120}};
  Shutter _shutter{_camera};
  PtpIpServer _server{_camera};
  Commands _commands{_camera, _shutter, _server};
};

TEST(ParseCommand, TakesAWordAndItsValues) {
  const auto command = parse_command("  shoot n=3   kind=pair note=a=b empty= ");
  ASSERT_TRUE(command);
  EXPECT_EQ(command->word, "shoot");
  EXPECT_EQ(command->values, (std::map<std::string, std::string, std::less<>>{
                                 {"n", "3"}, {"kind", "pair"}, {"note", "a=b"}, {"empty", ""}}));
}

TEST(ParseCommand, RefusesWhatIsNotWordAndPairs) {
  for (const std::string_view line : {"", "   ", "shoot 3", "shoot =3", "shoot n=1 n=2"}) {
    EXPECT_FALSE(parse_command(line)) << line;
  }
}

TEST(ParseCommand, TakesALineEndOfAnotherSystem) {
  EXPECT_EQ(parse_command("photos\r")->word, "photos");
}

TEST_F(CommandsTest, ShootAndTellTheNumbers) {
  EXPECT_EQ(run("shoot"), "ok first=1 last=1 files=1\n");
  EXPECT_EQ(run("shoot n=20 kind=pair"), "ok first=2 last=21 files=40\n");
  EXPECT_EQ(run("shoot n=0"), "ok first=22 last=21 files=0\n");
}

TEST_F(CommandsTest, ShootTheSizeForBothFilesOrOneForEach) {
  run("shoot kind=pair size=100000");
  run("shoot kind=pair size=100000 rawsize=200000 first=raw");
  const auto& photos = _camera.album().photos();
  ASSERT_EQ(photos.size(), 4U);
  EXPECT_EQ(photos[0].size, 100'000U);
  EXPECT_EQ(photos[1].size, 100'000U);
  EXPECT_EQ(photos[2].size, 200'000U);
  EXPECT_EQ(photos[3].size, 100'000U);
}

TEST_F(CommandsTest, NameTheValueThatIsWrong) {
  EXPECT_EQ(run("shoot n=x"), "error bad or missing value n\n");
  EXPECT_EQ(run("shoot n=-1"), "error bad or missing value n\n");
  EXPECT_EQ(run("shoot n=10001"), "error bad or missing value n\n");
  EXPECT_EQ(run("shoot kind=film"), "error bad or missing value kind\n");
  EXPECT_EQ(run("shoot size=999999999999"), "error bad or missing value size\n");
  EXPECT_EQ(run("shoot speed=2"), "error unknown value speed\n");
  EXPECT_EQ(run("cable"), "error bad or missing value in\n");
  EXPECT_EQ(run("card in=2"), "error bad or missing value in\n");
  EXPECT_EQ(run("power"), "error bad or missing value on\n");
  EXPECT_EQ(run("drop how=freeze"), "error bad or missing value how\n");
  EXPECT_EQ(run("busy n=1 op=xyz"), "error bad or missing value op\n");
  EXPECT_EQ(run("busy op=1009"), "error bad or missing value n\n");
  EXPECT_EQ(run("set rate=fast"), "error bad or missing value rate\n");
  EXPECT_EQ(run("photos all=1"), "error unknown value all\n");
  EXPECT_EQ(run("dance"), "error unknown command dance\n");
  EXPECT_EQ(run(""), "error a command is one word and key=value pairs\n");
  EXPECT_EQ(_camera.shots(), 0U);
}

TEST_F(CommandsTest, TellWhyThereIsNoPhoto) {
  run("card in=0");
  EXPECT_EQ(run("shoot"), "error no card in the camera\n");
  run("card in=1");
  EXPECT_EQ(run("shoot size=10"), "error the photo does not fit into 10 bytes\n");
}

TEST_F(CommandsTest, ListPhotosAndEndTheList) {
  EXPECT_EQ(run("photos"), "ok photos=0\n");
  run("shoot kind=raw");
  const TakenPhoto& photo = _camera.album().photos()[0];
  EXPECT_EQ(run("photos"), "photo name=IMG_0001.CR3 size=600000 sha256=" + photo.sha256 +
                               " shot=1 place=card asked=0 deleted=0\nok photos=1\n");
}

TEST_F(CommandsTest, PullTheCableAndPutItBack) {
  EXPECT_TRUE(reachable());
  EXPECT_EQ(run("cable in=0"), "ok\n");
  EXPECT_FALSE(reachable());
  EXPECT_EQ(run("cable in=0"), "ok\n");
  EXPECT_EQ(run("cable in=1"), "ok\n");
  EXPECT_TRUE(reachable());
}

TEST_F(CommandsTest, TakeBackACutThatHasNotComeAbout) {
  run("cable in=0 after=1000000");
  EXPECT_TRUE(reachable());
  run("cable in=1");
  run("status");
  EXPECT_FALSE(_server.link().takeDueCut());
  EXPECT_TRUE(reachable());
}

TEST_F(CommandsTest, StayReachableAfterADrop) {
  EXPECT_EQ(run("drop how=reset"), "ok\n");
  EXPECT_TRUE(reachable());
}

TEST_F(CommandsTest, SwitchTheCameraOffAndOn) {
  run("busy n=5");
  EXPECT_EQ(run("power on=0"), "ok\n");
  EXPECT_FALSE(reachable());
  EXPECT_EQ(run("shoot"), "error the camera is off\n");
  EXPECT_EQ(run("cable in=1"), "error the camera is off\n");
  EXPECT_EQ(run("power on=1"), "ok\n");
  EXPECT_TRUE(reachable());
  EXPECT_FALSE(_camera.takeBusy(Operation::getObject)) << "forgotten";
  EXPECT_EQ(run("shoot"), "ok first=1 last=1 files=1\n");
}

TEST_F(CommandsTest, EndABurstWhenTheCameraIsSwitchedOff) {
  std::string answer;
  _commands.execute("shoot n=5", [&](const std::string& text) { answer = text; });
  _shutter.proceed(Shutter::Clock::now());
  run("power on=0");
  EXPECT_EQ(answer, "error the camera was switched off\n");
  EXPECT_EQ(_camera.shots(), 1U);
}

TEST_F(CommandsTest, AnswerBusyForACountOrAnOperation) {
  run("busy n=2 op=101B");
  EXPECT_FALSE(_camera.takeBusy(Operation::getObject));
  EXPECT_TRUE(_camera.takeBusy(Operation::getPartialObject));
  run("busy n=1");
  EXPECT_TRUE(_camera.takeBusy(Operation::getObject));
  run("busy n=0");
  EXPECT_FALSE(_camera.takeBusy(Operation::getObject));
}

TEST_F(CommandsTest, SetOneThingWithoutTheOther) {
  run("set rate=1000");
  run("set silent=1");
  EXPECT_EQ(run("status"),
            "ok power=1 cable=1 card=1 host=0 target=card shots=0 silent=1 rate=1000 hostid=\n");
  run("set rate=0 silent=0");
  EXPECT_EQ(run("status"), "ok power=1 cable=1 card=1 host=0 target=card shots=0 silent=0 rate=0 hostid=\n");
}

TEST_F(CommandsTest, Quit) {
  EXPECT_FALSE(_commands.quitAsked());
  EXPECT_EQ(run("quit"), "ok\n");
  EXPECT_TRUE(_commands.quitAsked());
}

}  // namespace
}  // namespace ambrel::simulator
