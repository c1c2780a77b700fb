// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <signal.h>

#include "core/platform/ChildProgram.h"
#include "support/EventLoop.h"
#include "support/Printing.h"

using namespace ambrel;
using namespace std::chrono_literals;

namespace {

std::optional<ProgramEnd> shell(const QString& script, std::chrono::milliseconds patience = 20s) {
  return runProgram({"sh", {"-c", script}}, patience);
}

}  // namespace

TEST(ChildProgram, HandsBackOutputAndExitCode) {
  const auto end = shell("echo out; echo err >&2; exit 3");
  ASSERT_TRUE(end);
  EXPECT_EQ(end->exitCode, 3);
  EXPECT_EQ(end->output, "out\n");
}

TEST(ChildProgram, PassesArgumentsAsTheyAre) {
  const auto end = runProgram({"printf", {"%s|", "a b", "$HOME", "*", ""}}, 20s);
  ASSERT_TRUE(end);
  EXPECT_EQ(end->output, "a b|$HOME|*||");
}

TEST(ChildProgram, GivesTheProgramNobodyToAsk) {
  const auto end =
      shell("read answer || echo nobody; (: </dev/tty) 2>/dev/null || echo no terminal; echo $LC_ALL");
  ASSERT_TRUE(end);
  EXPECT_EQ(end->output, "nobody\nno terminal\nC\n");
}

TEST(ChildProgram, SaysWhenThereIsNoSuchProgram) {
  EXPECT_FALSE(runProgram({"no-such-program-anywhere", {}}, 20s));
}

TEST(ChildProgram, SaysWhenTheProgramCrashes) {
  EXPECT_FALSE(shell("kill -SEGV $$"));
}

TEST(ChildProgram, EndsAProgramThatOutlastsItsTimeWithEverythingItHasStarted) {
  const QTemporaryDir folder;
  const QString file = folder.filePath("child");
  const auto begun = std::chrono::steady_clock::now();
  EXPECT_FALSE(shell("sleep 1000 & echo $! > '" + file + "'; wait", 300ms));
  EXPECT_LT(std::chrono::steady_clock::now() - begun, 10s);
  QFile written(file);
  ASSERT_TRUE(written.open(QIODevice::ReadOnly));
  const pid_t child = written.readAll().trimmed().toInt();
  ASSERT_GT(child, 1);
  const auto hasEnded = [child] {
    QFile status(QStringLiteral("/proc/%1/stat").arg(child));
    return !status.open(QIODevice::ReadOnly) || status.readAll().contains(") Z ");
  };
  const Heartbeat heartbeat;
  EXPECT_TRUE(runEventsUntil(hasEnded));
}
