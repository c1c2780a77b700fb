// SPDX-License-Identifier: Apache-2.0
#include <QTemporaryDir>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <set>
#include <string>
#include <unistd.h>

#include "core/base/FolderStream.h"

namespace ambrel {
namespace {

int openFolder(const std::string& path) {
  return ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

TEST(FolderStream, GivesEveryEntryOnceOfAFolderThatOneReadDoesNotHold) {
  const QTemporaryDir folder;
  const std::string path = folder.path().toStdString();
  std::set<std::string> expected = {".", ".."};
  for (int i = 0; i < 700; ++i) {
    const std::string name = std::string(100, 'n') + std::to_string(i);
    ASSERT_EQ(::close(::open((path + '/' + name).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)), 0);
    expected.insert(name);
  }
  FolderStream stream(openFolder(path));
  std::multiset<std::string> given;
  while (const dirent* entry = stream.next())
    given.insert(entry->d_name);
  EXPECT_EQ(errno, 0);
  EXPECT_EQ(given, std::multiset<std::string>(expected.begin(), expected.end()));
}

TEST(FolderStream, ReportsAnErrorThroughErrno) {
  FolderStream missing(-1);
  EXPECT_EQ(missing.descriptor(), -1);
  EXPECT_EQ(missing.next(), nullptr);
  EXPECT_EQ(errno, EBADF);
}

TEST(FolderStream, ClosesItsDescriptor) {
  int descriptor = -1;
  {
    const FolderStream stream(openFolder("/"));
    descriptor = stream.descriptor();
    ASSERT_GE(descriptor, 0);
  }
  EXPECT_EQ(::fcntl(descriptor, F_GETFD), -1);
}

}  // namespace
}  // namespace ambrel
