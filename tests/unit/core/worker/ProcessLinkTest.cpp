// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "core/worker/ProcessLink.h"
#include "support/EventLoop.h"
#include "support/Printing.h"

namespace ambrel {
namespace {

using std::chrono_literals::operator""ms;
using SteadyClock = std::chrono::steady_clock;

WorkerLaunch noisyWorker(const QStringList& behaviours) {
  return {QStringLiteral(AMBREL_NOISY_WORKER), behaviours, QDir::tempPath(),
          QProcessEnvironment::systemEnvironment()};
}

// A process is gone when it has ended and its parent has taken note of it.
bool isGone(qint64 processId) {
  return ::kill(static_cast<pid_t>(processId), 0) != 0 && errno == ESRCH;
}

qsizetype openDescriptors() {
  return QDir("/proc/self/fd").entryList(QDir::System | QDir::AllEntries | QDir::NoDotAndDotDot).size();
}

class ProcessLinkTest : public ::testing::Test {
 protected:
  ProcessLinkTest() { listenTo(*link); }

  void listenTo(ProcessLink& spoken) {
    QObject::connect(&spoken, &WorkerLink::blockArrived,
                     [this](const QByteArray& block) { blocks.push_back(block.toStdString()); });
    QObject::connect(&spoken, &WorkerLink::exited, [this](bool wasCurrent) {
      exits.push_back(wasCurrent);
      blocksAtExit = blocks.size();
    });
    QObject::connect(&spoken, &WorkerLink::launchFailed,
                     [this](const QString& reason) { launchFailures.push_back(reason); });
  }
  void start(const QStringList& behaviours) { ASSERT_TRUE(link->start(noisyWorker(behaviours)).ok()); }
  bool heard(const std::string& block) {
    return runEventsUntil([&] { return std::count(blocks.begin(), blocks.end(), block) > 0; });
  }
  bool ended(std::size_t count = 1) {
    return runEventsUntil([&] { return exits.size() >= count; });
  }
  std::chrono::milliseconds timeToDestroyLink() {
    const auto before = SteadyClock::now();
    link.reset();
    return std::chrono::duration_cast<std::chrono::milliseconds>(SteadyClock::now() - before);
  }

  std::vector<std::string> blocks;
  std::vector<bool> exits;
  std::vector<QString> launchFailures;
  std::size_t blocksAtExit = 0;
  std::unique_ptr<ProcessLink> link = std::make_unique<ProcessLink>();
};

using Blocks = std::vector<std::string>;

TEST_F(ProcessLinkTest, HandsOnOneWholeLinePerBlock) {
  start({"say", "READY|OK", "split", "STATUS|José", "say", ""});
  ASSERT_TRUE(ended());
  EXPECT_EQ(blocks, (Blocks{"READY|OK\n", "STATUS|José\n", "\n"}));
}

TEST_F(ProcessLinkTest, JoinsOutputAndErrorsToOneStream) {
  start({"say", "a", "error", "b", "say", "c"});
  ASSERT_TRUE(ended());
  EXPECT_EQ(blocks, (Blocks{"a\n", "b\n", "c\n"}));
}

TEST_F(ProcessLinkTest, StartsTheWorkerInItsFolderAndEnvironment) {
  QTemporaryDir folder;
  WorkerLaunch launch = noisyWorker({"cwd", "env", "AMBREL_DIAG", "env", "AMBREL_UNHEARD_OF"});
  launch.workingDirectory = folder.path();
  launch.environment.insert("AMBREL_DIAG", "0");
  ASSERT_TRUE(link->start(launch).ok());
  ASSERT_TRUE(ended());
  EXPECT_EQ(blocks, (Blocks{folder.path().toStdString() + "\n", "0\n", "unset\n"}));
}

TEST_F(ProcessLinkTest, SendsLines) {
  start({"echo"});
  EXPECT_TRUE(link->sendLine("CONNECT|both"));
  EXPECT_TRUE(link->sendLine("SET_DOWNLOAD_DIR|/été"));
  EXPECT_TRUE(heard("got SET_DOWNLOAD_DIR|/été\n"));
  EXPECT_EQ(blocks, (Blocks{"got CONNECT|both\n", "got SET_DOWNLOAD_DIR|/été\n"}));
}

TEST_F(ProcessLinkTest, ReportsTheEndOnceAndAfterTheLastLine) {
  start({"repeat", "5000", "line ", "exit", "7"});
  EXPECT_TRUE(link->isRunning());
  EXPECT_GT(link->processId(), 0);
  ASSERT_TRUE(ended());
  EXPECT_EQ(blocksAtExit, 5000U);
  EXPECT_EQ(blocks.back(), "line 4999\n");
  EXPECT_EQ(exits, (std::vector<bool>{true}));
  EXPECT_FALSE(link->isRunning());
  EXPECT_EQ(link->processId(), 0);
}

TEST_F(ProcessLinkTest, ReportsACrashAsAnEnd) {
  start({"say", "a", "crash"});
  ASSERT_TRUE(ended());
  EXPECT_EQ(blocks, (Blocks{"a\n"}));
  EXPECT_EQ(exits, (std::vector<bool>{true}));
}

TEST_F(ProcessLinkTest, DropsAHalfLineAtTheEnd) {
  start({"say", "a", "hex", "4142"});
  ASSERT_TRUE(ended());
  EXPECT_EQ(blocks, (Blocks{"a\n"}));
}

TEST_F(ProcessLinkTest, ReportsTheEndAlthoughAChildOfTheWorkerHoldsTheOutputOpen) {
  start({"linger", "say", "a"});
  ASSERT_TRUE(ended());
  EXPECT_EQ(blocks, (Blocks{"a\n"}));
}

// Starts that fail

TEST_F(ProcessLinkTest, TellsWhyAProgramCannotBeRun) {
  QTemporaryDir folder;
  QFile program(folder.filePath("worker"));
  ASSERT_TRUE(program.open(QIODevice::WriteOnly));
  program.write("no program");
  program.close();
  ASSERT_TRUE(program.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
  WorkerLaunch launch = noisyWorker({});
  launch.program = program.fileName();
  ASSERT_TRUE(link->start(launch).ok());
  ASSERT_TRUE(runEventsUntil([this] { return !launchFailures.empty(); }));
  EXPECT_TRUE(launchFailures[0].contains("Exec format error")) << launchFailures[0].toStdString();
  EXPECT_FALSE(link->isRunning());
  EXPECT_TRUE(exits.empty());
}

TEST_F(ProcessLinkTest, TellsWhenTheWorkingDirectoryIsGone) {
  WorkerLaunch launch = noisyWorker({"say", "a"});
  launch.workingDirectory = "/nowhere/at/all";
  ASSERT_TRUE(link->start(launch).ok());
  ASSERT_TRUE(runEventsUntil([this] { return !launchFailures.empty(); }));
  EXPECT_TRUE(launchFailures[0].contains("No such file")) << launchFailures[0].toStdString();
}

TEST_F(ProcessLinkTest, StartsAgainAfterALaunchFailed) {
  WorkerLaunch launch = noisyWorker({});
  launch.program = "/nowhere/at/all";
  ASSERT_TRUE(link->start(launch).ok());
  ASSERT_TRUE(runEventsUntil([this] { return !launchFailures.empty(); }));
  start({"say", "a"});
  ASSERT_TRUE(ended());
  EXPECT_EQ(blocks, (Blocks{"a\n"}));
}

TEST_F(ProcessLinkTest, ReportsADroppedWorkerThatCouldNotBeRunAsEnded) {
  WorkerLaunch launch = noisyWorker({});
  launch.program = "/nowhere/at/all";
  ASSERT_TRUE(link->start(launch).ok());
  link->drop();
  ASSERT_TRUE(ended());
  EXPECT_EQ(exits, (std::vector<bool>{false}));
  EXPECT_TRUE(launchFailures.empty());
}

// Ending a worker

TEST_F(ProcessLinkTest, TerminatesTheWorker) {
  start({"say", "a", "hang"});
  ASSERT_TRUE(heard("a\n"));
  link->terminate();
  ASSERT_TRUE(ended());
  EXPECT_EQ(exits, (std::vector<bool>{true}));
}

TEST_F(ProcessLinkTest, KillsAWorkerThatRefusesToTerminate) {
  start({"deaf", "say", "a", "hang"});
  ASSERT_TRUE(heard("a\n"));
  const qint64 worker = link->processId();
  link->terminate();
  link->drop();
  link->kill(worker + 1);
  EXPECT_FALSE(isGone(worker));
  link->kill(worker);
  ASSERT_TRUE(ended());
  EXPECT_EQ(exits, (std::vector<bool>{false}));
  EXPECT_TRUE(isGone(worker));
  link->kill(worker);  // whoever bears the number now
}

TEST_F(ProcessLinkTest, HearsNothingOfADroppedWorkerButItsEnd) {
  start({"say", "a", "eof", "say", "b"});
  ASSERT_TRUE(heard("a\n"));
  link->drop();
  EXPECT_FALSE(link->isRunning());
  EXPECT_EQ(link->processId(), 0);
  EXPECT_FALSE(link->sendLine("QUIT"));
  ASSERT_TRUE(ended());
  EXPECT_EQ(blocks, (Blocks{"a\n"}));
  EXPECT_EQ(exits, (std::vector<bool>{false}));
}

TEST_F(ProcessLinkTest, LetsADroppedWorkerEndThatHasMuchToSay) {
  start({"say", "a", "eof", "endless", "1000000"});
  ASSERT_TRUE(heard("a\n"));
  link->drop();
  EXPECT_TRUE(ended()) << "nobody reads what it says";
}

TEST_F(ProcessLinkTest, TellsTheEndOfAReplacedWorkerFromItsSuccessors) {
  start({"say", "old", "eof", "say", "late"});
  ASSERT_TRUE(heard("old\n"));
  start({"say", "new", "hang"});
  ASSERT_TRUE(heard("new\n"));
  ASSERT_TRUE(ended());
  EXPECT_EQ(exits, (std::vector<bool>{false}));
  EXPECT_TRUE(link->isRunning());
  link->terminate();
  ASSERT_TRUE(ended(2));
  EXPECT_EQ(exits, (std::vector<bool>{false, true}));
  EXPECT_EQ(blocks, (Blocks{"old\n", "new\n"}));
}

TEST_F(ProcessLinkTest, MayBeDroppedFromWithinALine) {
  QObject::connect(link.get(), &WorkerLink::blockArrived, [this] { link->drop(); });
  start({"repeat", "1000", "line "});
  ASSERT_TRUE(ended());
  EXPECT_EQ(blocks, (Blocks{"line 0\n"}));
}

TEST_F(ProcessLinkTest, MayBeStartedAgainFromWithinAnEnd) {
  int starts = 1;
  QObject::connect(link.get(), &WorkerLink::exited, [&] {
    if (++starts <= 5) start({"say", "again"});
  });
  start({"say", "first"});
  ASSERT_TRUE(ended(5));
  EXPECT_EQ(blocks, (Blocks{"first\n", "again\n", "again\n", "again\n", "again\n"}));
}

// Sending to a worker in trouble

TEST_F(ProcessLinkTest, SendsNothingWithoutAWorker) {
  EXPECT_FALSE(link->sendLine("QUIT"));
  link->terminate();
  link->drop();
  link->kill(1);
}

TEST_F(ProcessLinkTest, SurvivesAPipeThatTheWorkerClosed) {
  start({"closein", "say", "a", "hang"});
  ASSERT_TRUE(heard("a\n"));
  EXPECT_FALSE(link->sendLine("CONNECT|both"));
}

TEST_F(ProcessLinkTest, NeverWaitsForAWorkerThatDoesNotListen) {
  start({"hang"});
  const QByteArray line(1000, 'x');
  int sent = 0;
  while (sent < 10'000 && link->sendLine(line))
    ++sent;
  EXPECT_GT(sent, 0);
  EXPECT_LT(sent, 10'000);
  EXPECT_TRUE(link->isRunning());
}

TEST_F(ProcessLinkTest, ClosesThePipeRatherThanSendHalfALine) {
  start({"eof", "say", "input ended"});
  EXPECT_FALSE(link->sendLine(QByteArray(10'000'000, 'x')));
  EXPECT_TRUE(heard("input ended\n"));
}

// What is left behind

TEST_F(ProcessLinkTest, LeavesNoWorkerBehindWhenItGoes) {
  start({"say", "a", "hang"});
  ASSERT_TRUE(heard("a\n"));
  const qint64 worker = link->processId();
  timeToDestroyLink();
  EXPECT_TRUE(isGone(worker));
  EXPECT_TRUE(exits.empty());
}

TEST_F(ProcessLinkTest, KillsTheDeafAndTheStoppedWhenItGoesWithoutWaitingLong) {
  start({"deaf", "say", "a", "hang"});
  ASSERT_TRUE(heard("a\n"));
  const qint64 deaf = link->processId();
  start({"say", "b", "hang"});
  ASSERT_TRUE(heard("b\n"));
  const qint64 stopped = link->processId();
  ASSERT_EQ(::kill(static_cast<pid_t>(stopped), SIGSTOP), 0);
  const auto spent = timeToDestroyLink();
  EXPECT_TRUE(isGone(deaf));
  EXPECT_TRUE(isGone(stopped));
  EXPECT_GE(spent, ProcessLink::kEndGrace);
  EXPECT_LE(spent, 1000ms);
}

TEST_F(ProcessLinkTest, GoesWhileAWorkerIsOnlyStarting) {
  start({"hang"});
  const qint64 worker = link->processId();
  timeToDestroyLink();
  EXPECT_TRUE(isGone(worker));
}

TEST_F(ProcessLinkTest, KeepsThePipesOfOneWorkerFromAnother) {
  ProcessLink other;
  start({"say", "a", "eof"});
  ASSERT_TRUE(heard("a\n"));
  ASSERT_TRUE(other.start(noisyWorker({"hang"})).ok());
  link->drop();
  EXPECT_TRUE(ended()) << "the other worker holds its input open";
}

TEST_F(ProcessLinkTest, LeavesNoDescriptorOpen) {
  start({"say", "a"});
  ASSERT_TRUE(ended());
  runEventsUntil([] { return true; });
  const qsizetype before = openDescriptors();
  for (std::size_t run = 2; run <= 20; ++run) {
    start({"say", "a"});
    ASSERT_TRUE(ended(run));
  }
  EXPECT_LE(openDescriptors(), before + 1);
}

}  // namespace
}  // namespace ambrel
