// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <QTemporaryDir>
#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "core/base/FileSystemCalls.h"

using namespace ambrel;

namespace {

class FileSystemCallsTest : public ::testing::Test {
 protected:
  QByteArray at(const QString& name) const { return QFile::encodeName(_folder.filePath(name)); }
  QByteArray folder() const { return QFile::encodeName(_folder.path()); }

  void write(const QByteArray& path, const QByteArray& bytes) {
    QFile file(QFile::decodeName(path));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
  }

  static QByteArray read(const QByteArray& path) {
    QFile file(QFile::decodeName(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
  }

  // Everything that `from` holds, copied in pieces of at most `piece` bytes.
  QByteArray copied(int from, std::size_t piece) {
    const QByteArray to = at("copy");
    const int descriptor = calls.open(to.constData(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    EXPECT_GE(descriptor, 0);
    ssize_t count = 0;
    while ((count = calls.copyBytes(from, descriptor, piece)) > 0)
      EXPECT_LE(static_cast<std::size_t>(count), piece);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(calls.close(descriptor), 0);
    return read(to);
  }

  QTemporaryDir _folder;
  FileSystemCalls calls;
};

}  // namespace

TEST_F(FileSystemCallsTest, TheExclusiveRenameLeavesATakenNameAlone) {
  write(at("a"), "photo");
  write(at("b"), "other");
  EXPECT_EQ(calls.renameNoReplace(at("a").constData(), at("b").constData()), -1);
  EXPECT_EQ(errno, EEXIST);
  EXPECT_EQ(read(at("a")), "photo");
  EXPECT_EQ(read(at("b")), "other");
  EXPECT_EQ(calls.renameNoReplace(at("a").constData(), at("c").constData()), 0);
  EXPECT_EQ(read(at("c")), "photo");
}

TEST_F(FileSystemCallsTest, ALinkIsMadeToALinkAndNotToWhatItNames) {
  write(at("a"), "photo");
  ASSERT_EQ(::symlink("a", at("link").constData()), 0);
  ASSERT_EQ(calls.link(at("link").constData(), at("second").constData()), 0);
  struct stat status = {};
  ASSERT_EQ(calls.statusOf(at("second").constData(), &status), 0);
  EXPECT_TRUE(S_ISLNK(status.st_mode));
}

TEST_F(FileSystemCallsTest, FlushesFilesAndFolders) {
  write(at("a"), "photo");
  for (const QByteArray& path : {at("a"), folder()}) {
    const int descriptor = calls.open(path.constData(), O_RDONLY, 0);
    EXPECT_EQ(calls.flush(descriptor), 0);
    EXPECT_EQ(calls.close(descriptor), 0);
  }
  EXPECT_EQ(calls.flush(-1), -1);
  EXPECT_EQ(errno, EBADF);
}

TEST_F(FileSystemCallsTest, CopiesToTheEndInPiecesOfAnySize) {
  QByteArray bytes(1'000'003, '\0');
  for (qsizetype i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<char>(i * 31 + i / 256);
  write(at("a"), bytes);
  for (const std::size_t piece : {std::size_t{4097}, std::size_t{1} << 26}) {
    const int from = calls.open(at("a").constData(), O_RDONLY, 0);
    EXPECT_TRUE(copied(from, piece) == bytes) << piece;
    EXPECT_EQ(calls.close(from), 0);
  }
}

TEST_F(FileSystemCallsTest, CopiesWhereTheSystemHasNoFasterWay) {
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  ASSERT_EQ(calls.write(pipe[1], "through memory", 14), 14);
  ASSERT_EQ(calls.close(pipe[1]), 0);
  EXPECT_EQ(copied(pipe[0], 5), "through memory");
  EXPECT_EQ(calls.close(pipe[0]), 0);
}

TEST_F(FileSystemCallsTest, CopiesAFileWhoseSizeTheFileSystemDoesNotTell) {
  const int from = calls.open("/proc/self/maps", O_RDONLY, 0);
  if (from < 0) GTEST_SKIP() << "only Linux has such files";
  EXPECT_TRUE(copied(from, 65536).contains("libQt6Core"));
  EXPECT_EQ(calls.close(from), 0);
}

TEST_F(FileSystemCallsTest, AFullDiskIsAnErrorOfTheCopy) {
  write(at("a"), "photo");
  const int from = calls.open(at("a").constData(), O_RDONLY, 0);
  const int full = calls.open("/dev/full", O_WRONLY, 0);
  if (full < 0) GTEST_SKIP() << "only Linux has this device";
  EXPECT_EQ(calls.copyBytes(from, full, 100), -1);
  EXPECT_EQ(errno, ENOSPC);
  EXPECT_EQ(calls.close(full), 0);
  EXPECT_EQ(calls.close(from), 0);
}
