// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <gtest/gtest.h>
#include <string>

#include "core/platform/WorkerProcesses.h"
#include "support/NamedWorkers.h"

namespace ambrel {
namespace {

using Ids = std::vector<qint64>;

// Longer than the 15 characters that the system keeps of a process name, and no other test's that runs
// beside.
const std::string kUniqueName =
    "ambrel_listing_test_worker_" + std::to_string(QCoreApplication::applicationPid());
const char* const kName = kUniqueName.c_str();

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
  const std::string& name = kUniqueName;
  for (const std::string& other :
       {name + "2", "x" + name, name.substr(0, 15), "A" + name.substr(1), name + " (deleted)"}) {
    ASSERT_TRUE(workers.run(other.c_str())) << other;
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
