// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <gtest/gtest.h>

#include "core/platform/WorkerProcesses.h"
#include "support/NamedWorkers.h"

namespace ambrel {
namespace {

using Ids = std::vector<qint64>;

// These names are longer than the 15 characters that the system keeps of a process name.
const char* const kName = "ambrel_listing_test_worker";

class WorkerProcessesTest : public ::testing::Test {
 protected:
  NamedWorkers workers;
};

TEST_F(WorkerProcessesTest, KnowAProcessByTheFileNameOfItsExecutable) {
  const QProcess* first = workers.run(kName);
  const QProcess* second = workers.run(kName);
  ASSERT_TRUE(first && second);
  Ids expected{first->processId(), second->processId()};
  std::sort(expected.begin(), expected.end());
  Ids found = processesRunning(kName);
  std::sort(found.begin(), found.end());
  EXPECT_EQ(found, expected);
}

TEST_F(WorkerProcessesTest, KnowAProcessWhoseExecutableWasDeletedOrReplaced) {
  const QProcess* deleted = workers.run(kName);
  ASSERT_TRUE(deleted);
  ASSERT_TRUE(QFile::remove(workers.pathOf(*deleted)));
  EXPECT_EQ(processesRunning(kName), Ids{deleted->processId()});
  ASSERT_TRUE(QFile::copy(QStringLiteral(AMBREL_NOISY_WORKER), workers.pathOf(*deleted)));
  EXPECT_EQ(processesRunning(kName), Ids{deleted->processId()});
}

TEST_F(WorkerProcessesTest, TakeNoOtherProcessForIt) {
  for (const char* other : {"ambrel_listing_test_worker2", "xambrel_listing_test_worker", "ambrel_listing_",
                            "Ambrel_listing_test_worker", "ambrel_listing_test_worker (deleted)"}) {
    ASSERT_TRUE(workers.run(other)) << other;
  }
  ASSERT_TRUE(workers.runCalled(kName, "another_program"));
  EXPECT_EQ(processesRunning(kName), Ids{});
}

TEST_F(WorkerProcessesTest, KnowAProcessThatCallsItselfSomethingElse) {
  const QProcess* disguised = workers.runCalled("another_program", kName);
  ASSERT_TRUE(disguised);
  EXPECT_EQ(processesRunning(kName), Ids{disguised->processId()});
}

TEST_F(WorkerProcessesTest, FindTheProcessThatAsks) {
  const QString ownName = QFileInfo(QCoreApplication::applicationFilePath()).fileName();
  const Ids found = processesRunning(ownName);
  EXPECT_EQ(std::count(found.begin(), found.end(), QCoreApplication::applicationPid()), 1);
}

TEST_F(WorkerProcessesTest, FindNothingForNoName) {
  EXPECT_EQ(processesRunning(""), Ids{});
}

}  // namespace
}  // namespace ambrel
