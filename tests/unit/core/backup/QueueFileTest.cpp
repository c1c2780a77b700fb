// SPDX-License-Identifier: Apache-2.0
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "core/backup/QueueFile.h"
#include "support/Printing.h"

using namespace ambrel;

namespace {

const QByteArray kHeader = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n";

QByteArray queueOf(const QByteArray& items) {
  return kHeader + "<array>" + items + "</array>\n</plist>\n";
}

QStringList decoded(const QByteArray& bytes) {
  const Result<QStringList> queue = decodeQueue(bytes);
  EXPECT_TRUE(queue) << bytes.left(200).toStdString();
  return queue ? queue.value() : QStringList{"(refused)"};
}

bool isRefused(const QByteArray& bytes) {
  return !decodeQueue(bytes).ok();
}

class QueueFileOnDisk : public ::testing::Test {
 protected:
  QString write(const QByteArray& bytes) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(bytes), bytes.size());
    return path;
  }
  QTemporaryDir folder;
  QString path = folder.filePath("queue.plist");
};

}  // namespace

TEST(QueueFile, IsAnXmlPropertyListWhoseRootIsAnArrayOfStrings) {
  EXPECT_EQ(encodeQueue({"/Shots/Ann/Ann_0001.JPG", "/Shots/B & C/x.JPG"}),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
            "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
            "<plist version=\"1.0\">\n<array>\n"
            "\t<string>/Shots/Ann/Ann_0001.JPG</string>\n"
            "\t<string>/Shots/B &amp; C/x.JPG</string>\n"
            "</array>\n</plist>\n");
}

TEST(QueueFile, GivesBackEveryPathThatAFileCanBear) {
  const QStringList paths = {"/a",
                             "/Jos\u00e9/Jose\u0301",
                             "/ leading and trailing ",
                             "/a\nb\r\n\tc\r",
                             "/<&>\"'/]]>",
                             "/&amp;/&lt;/&#10;",
                             "/\u202Eevil/\u0001",
                             "/🙂",
                             "/.",
                             "/a//b/",
                             "/<array><dict>"};
  EXPECT_EQ(decoded(encodeQueue(paths)), paths);
  EXPECT_EQ(decoded(encodeQueue({})), QStringList());
}

TEST(QueueFile, TakesEachPathOnce) {
  EXPECT_EQ(decoded(queueOf("<string>/a</string><string>/b</string><string>/a</string>")),
            (QStringList{"/a", "/b"}));
}

TEST(QueueFile, LeavesOutWhatIsNoAbsolutePath) {
  EXPECT_EQ(decoded(queueOf("<string>a</string><string/><integer>3</integer><true/><string>../b</string>"
                            "<data>YQ==</data><string>/c\xff</string><string>/d</string>")),
            QStringList{"/d"});
}

TEST(QueueFile, TakesCharacterDataSections) {
  EXPECT_EQ(decoded(queueOf("<string><![CDATA[/a&b]]></string>")), QStringList{"/a&b"});
}

TEST(QueueFile, RefusesARootThatIsNoArray) {
  EXPECT_TRUE(isRefused(kHeader + "<string>/a</string></plist>"));
  EXPECT_TRUE(isRefused(kHeader + "<dict><key>a</key><string>/a</string></dict></plist>"));
  EXPECT_TRUE(isRefused(kHeader + "</plist>"));
}

TEST(QueueFile, RefusesWhatIsNoPropertyList) {
  EXPECT_TRUE(isRefused(""));
  EXPECT_TRUE(isRefused("/Shots/Ann_0001.JPG\n"));
  EXPECT_TRUE(isRefused("bplist00\xa1\x01\x52/a"));
  EXPECT_TRUE(isRefused(QByteArray(4096, '\0')));
  EXPECT_TRUE(isRefused("<array"));
}

TEST(QueueFile, RefusesAFileThatWasCutShort) {
  const QByteArray whole = encodeQueue({"/Shots/Ann/Ann_0001.JPG", "/Shots/Ann/Ann_0002.JPG"});
  for (qsizetype length = 0; length < whole.indexOf("</array>"); ++length)
    EXPECT_TRUE(isRefused(whole.left(length))) << length;
}

TEST(QueueFile, NeverHandsEntitiesToTheParser) {
  const QByteArray laughs =
      "<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY a \"ha\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;\">]>"
      "<plist><array><string>/&b;</string></array></plist>";
  EXPECT_TRUE(isRefused(laughs));
  EXPECT_TRUE(isRefused("<!DOCTYPE plist SYSTEM \"file:///etc/passwd\"><plist><array/></plist>"));
  EXPECT_TRUE(isRefused(encodeQueue({"/a"}).replace(".dtd\">", ".dtd\" [<!ENTITY a \"b\">]>")));
  EXPECT_TRUE(isRefused(encodeQueue({"/a"}) + "<!DOCTYPE plist>"));
}

TEST(QueueFile, RefusesContainersInContainersHoweverDeep) {
  EXPECT_TRUE(isRefused(queueOf("<array><string>/a</string></array>")));
  EXPECT_TRUE(isRefused(queueOf("<dict/>")));
  EXPECT_TRUE(isRefused(kHeader + QByteArray("<array>").repeated(1'000'000)));
}

TEST(QueueFile, RefusesMoreThanItsLimit) {
  QByteArray bytes = queueOf("<string>/a</string>");
  bytes.append(QByteArray(kMaxQueueFileBytes - bytes.size(), ' '));
  EXPECT_FALSE(isRefused(bytes));
  EXPECT_TRUE(isRefused(bytes + ' '));
}

TEST_F(QueueFileOnDisk, ReadsWhatWasWritten) {
  EXPECT_EQ(readQueueFile(write(encodeQueue({"/a", "/b"}))).value(), (QStringList{"/a", "/b"}));
}

TEST_F(QueueFileOnDisk, ReadsAMissingFileAsAnEmptyQueue) {
  EXPECT_EQ(readQueueFile(path).value(), QStringList());
}

TEST_F(QueueFileOnDisk, RefusesAHugeFileWithoutReadingIt) {
  write("");
  ASSERT_TRUE(QFile::resize(path, qint64{1} << 40));
  EXPECT_FALSE(readQueueFile(path));
}

TEST_F(QueueFileOnDisk, RefusesWhatIsNoFileAndDoesNotWaitForAPipe) {
  EXPECT_FALSE(readQueueFile(folder.path()));
  ASSERT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
  EXPECT_FALSE(readQueueFile(path));
}
