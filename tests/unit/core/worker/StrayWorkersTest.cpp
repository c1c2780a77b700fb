// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <gtest/gtest.h>
#include <unistd.h>

#include "core/worker/StrayWorkers.h"
#include "core/worker/WorkerFiles.h"
#include "support/EventLoop.h"
#include "support/NamedWorkers.h"

namespace ambrel {
namespace {

std::vector<qint64> killedAmong(std::vector<qint64> running, qint64 own) {
  std::vector<qint64> killed;
  killStrayWorkers(own, {[&running] { return running; }, [&killed](qint64 id) { killed.push_back(id); }});
  return killed;
}

TEST(StrayWorkers, AreAllWorkersButTheApplicationsOwn) {
  EXPECT_EQ(killedAmong({11, 12, 13}, 12), (std::vector<qint64>{11, 13}));
  EXPECT_EQ(killedAmong({11, 12}, 0), (std::vector<qint64>{11, 12}));
  EXPECT_TRUE(killedAmong({12}, 12).empty());
}

TEST(StrayWorkers, AreNoneWhenTheSystemTellsOfNone) {
  EXPECT_TRUE(killedAmong({}, 0).empty());
}

TEST(StrayWorkers, AreNeverAWholeGroupOfProcesses) {
  EXPECT_TRUE(killedAmong({0, -1, -500}, 0).empty());
}

void killStrayWorkersOfThisWorld() {
  const QString name = WorkerFiles::workerName();
  NamedWorkers workers;
  QProcess* const stray = workers.run(name);
  QProcess* const deleted = workers.run(name);
  QProcess* const own = workers.run(name);
  ASSERT_TRUE(stray && deleted && own);
  ASSERT_TRUE(QFile::remove(workers.pathOf(*deleted)));
  std::vector<QProcess*> others{own, workers.run(name + "2"), workers.run("ambrel_cpp_work"),
                                workers.runCalled(name, "another_program")};

  killStrayWorkers(own->processId(), StrayWorkerMeans::ofTheSystem());

  for (QProcess* killed : {stray, deleted}) {
    EXPECT_TRUE(runEventsUntil([killed] { return killed->state() == QProcess::NotRunning; }));
    EXPECT_EQ(killed->exitStatus(), QProcess::CrashExit);
  }
  for (QProcess* other : others) {
    ASSERT_TRUE(other);
    other->waitForFinished(1);  // takes note of an end that has come meanwhile
    EXPECT_EQ(other->state(), QProcess::Running) << other->program().toStdString();
  }
}

// Kills every worker that it can see, so it must see only its own: outside, the test runs itself once more as
// the first process of a world of its own.
TEST(StrayWorkers, AreReallyKilled) {
  if (::getpid() == 1) return killStrayWorkersOfThisWorld();
  const QStringList ownWorld{"-Urpf", "--mount-proc", "--kill-child"};
  if (QProcess::execute("unshare", ownWorld + QStringList{"true"}) != 0) {
    GTEST_SKIP() << "this system gives no process namespace: nothing was really killed";
  }
  QProcess inside;
  inside.setProcessChannelMode(QProcess::MergedChannels);
  inside.start("unshare", ownWorld + QStringList{QCoreApplication::applicationFilePath(),
                                                 "--gtest_filter=StrayWorkers.AreReallyKilled"});
  ASSERT_TRUE(inside.waitForFinished());
  const QByteArray output = inside.readAll();
  EXPECT_EQ(inside.exitCode(), 0) << output.toStdString();
  EXPECT_TRUE(output.contains("[  PASSED  ] 1 test.")) << output.toStdString();
}

}  // namespace
}  // namespace ambrel
