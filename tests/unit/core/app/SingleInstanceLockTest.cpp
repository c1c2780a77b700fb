// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "core/app/SingleInstanceLock.h"

using namespace ambrel;

namespace {

QByteArray contentOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

TEST(SingleInstanceLock, HoldsTheProcessIdFollowedByALineFeed) {
  const QTemporaryDir folder;
  SingleInstanceLock lock(folder.path());
  ASSERT_TRUE(lock.acquireSingleInstanceLock());
  EXPECT_EQ(contentOf(folder.filePath("com.ambrel.tether.single-instance.lock")),
            QByteArray::number(static_cast<qint64>(::getpid())) + "\n");
}

TEST(SingleInstanceLock, RefusesASecondHolderAndKeepsTheFirstOnesProcessId) {
  const QTemporaryDir folder;
  SingleInstanceLock first(folder.path());
  SingleInstanceLock second(folder.path());
  ASSERT_TRUE(first.acquireSingleInstanceLock());
  const QByteArray content = contentOf(first.path());
  EXPECT_FALSE(second.acquireSingleInstanceLock());
  EXPECT_EQ(contentOf(first.path()), content);
}

TEST(SingleInstanceLock, OutlivesTheObjectThatTookIt) {
  const QTemporaryDir folder;
  { ASSERT_TRUE(SingleInstanceLock(folder.path()).acquireSingleInstanceLock()); }
  EXPECT_FALSE(SingleInstanceLock(folder.path()).acquireSingleInstanceLock());
}

TEST(SingleInstanceLock, IsFreeAgainOnceTheProcessThatHeldItHasEnded) {
  const QTemporaryDir folder;
  const pid_t child = ::fork();
  if (child == 0) ::_exit(SingleInstanceLock(folder.path()).acquireSingleInstanceLock() ? 0 : 1);
  int status = -1;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_EQ(status, 0);
  EXPECT_TRUE(SingleInstanceLock(folder.path()).acquireSingleInstanceLock());
}

TEST(SingleInstanceLock, LetsTheApplicationRunWhenTheFileCannotBeOpened) {
  const QTemporaryDir folder;
  SingleInstanceLock lock(folder.filePath("no such folder"));
  EXPECT_TRUE(lock.acquireSingleInstanceLock());
}

}  // namespace
