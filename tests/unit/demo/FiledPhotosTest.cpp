// SPDX-License-Identifier: Apache-2.0
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "demo/FiledPhotos.h"

using namespace ambrel;

namespace {

void write(const QString& path, const QByteArray& bytes) {
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(bytes);
}

constexpr const char* kHashOfAbc = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

TEST(FiledPhotos, HashesFilesAtEveryDepth) {
  const QTemporaryDir folder;
  QDir(folder.path()).mkpath("Anna");
  write(folder.filePath("Anna/Anna_0001.JPG"), "abc");
  EXPECT_EQ(fileHashesBelow(folder.path()), QStringList{kHashOfAbc});
}

TEST(FiledPhotos, CountsAPhotoThatWasFiledOnce) {
  EXPECT_EQ(filedExactlyOnce({"a", "b"}, {"b", "a", "other"}), 2);
}

TEST(FiledPhotos, DoesNotCountAPhotoThatIsMissingOrFiledTwice) {
  EXPECT_EQ(filedExactlyOnce({"a", "b"}, {"b", "b"}), 0);
}

TEST(FiledPhotos, DoesNotTakeAnUnreadableFileForAPhoto) {
  EXPECT_EQ(filedExactlyOnce({""}, {""}), 0);
}

TEST(FiledPhotos, DrawsTheFoldersWithTheirFiles) {
  const QTemporaryDir folder;
  QDir(folder.path()).mkpath("Photos/Anna");
  write(folder.filePath("Photos/Anna/Anna_0001.JPG"), "abc");
  EXPECT_EQ(fileTree(folder.filePath("Photos")),
            (QStringList{"Photos/", "  Anna/", "    Anna_0001.JPG  (3 bytes)"}));
}

}  // namespace
