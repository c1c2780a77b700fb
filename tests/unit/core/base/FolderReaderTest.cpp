// SPDX-License-Identifier: Apache-2.0
#include <QTemporaryDir>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "core/base/FolderReader.h"

namespace ambrel {
namespace {

using Names = std::vector<std::string>;

class FolderReaderTest : public ::testing::Test {
 protected:
  // QTemporaryDir does not find what has no text for a name.
  ~FolderReaderTest() override { std::filesystem::remove_all(root); }

  std::string path(const std::string& name) const { return root + '/' + name; }
  void makeFile(const std::string& name) const { std::ofstream(path(name)) << "bytes"; }
  void makeFolder(const std::string& name) const {
    ASSERT_TRUE(std::filesystem::create_directory(path(name)));
  }
  void makeLink(const std::string& name, const std::string& to) const {
    std::filesystem::create_symlink(to, path(name));
  }
  static Names sorted(Names names) {
    std::sort(names.begin(), names.end());
    return names;
  }

  QTemporaryDir folder;
  std::string root = folder.path().toStdString();
};

TEST_F(FolderReaderTest, ListsOneLevelWithHiddenEntriesAndWithoutItselfAndItsParent) {
  makeFile("a.jpg");
  makeFile(".hidden");
  makeFolder("Ann");
  makeFile("Ann/inner.jpg");
  EXPECT_EQ(sorted(entriesOf(root)), (Names{".hidden", "Ann", "a.jpg"}));
}

TEST_F(FolderReaderTest, GivesNamesAsTheirBytesWhateverThoseAre) {
  const Names odd = {"\x01\x02", " ", "\xff\xfe.jpg", "a\nb", "u\xcc\x88", "\xc3\xbc", std::string(255, 'n')};
  for (const std::string& name : odd)
    makeFile(name);
  EXPECT_EQ(sorted(entriesOf(root)), sorted(odd));
}

TEST_F(FolderReaderTest, ALinkIsAFolderWhenItLeadsToOne) {
  makeFolder("Ann");
  makeFile("file");
  makeLink("to folder", "Ann");
  makeLink("to file", "file");
  makeLink("to nothing", "missing");
  makeLink("to itself", "to itself");
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(sorted(foldersIn(root)), (Names{"Ann", "to folder"}));
}

TEST_F(FolderReaderTest, AFolderThatCannotBeReadHasNoEntries) {
  makeFile("file");
  for (const std::string& name :
       {path("missing"), path("file"), std::string(), path(std::string("file\0y", 6))}) {
    FolderReader reader(name);
    EXPECT_FALSE(reader.isOpen()) << name;
    EXPECT_EQ(reader.next(), nullptr);
    EXPECT_TRUE(reader.failed());
    EXPECT_EQ(entriesOf(name), Names());
    EXPECT_EQ(foldersIn(name), Names());
  }
}

TEST_F(FolderReaderTest, APathThatHoldsANulIsNotCutThere) {
  makeFolder("Ann");
  EXPECT_FALSE(FolderReader(path("Ann") + std::string("\0x", 2)).isOpen());
}

TEST_F(FolderReaderTest, APipeIsNotWaitedFor) {
  ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
  EXPECT_FALSE(FolderReader(path("pipe")).isOpen());
}

TEST_F(FolderReaderTest, OpensAFolderInsideAnother) {
  makeFolder("Ann");
  makeFile("Ann/Ann_0001.JPG");
  const FolderReader parent(root);
  FolderReader inner(parent, "Ann");
  ASSERT_TRUE(inner.isOpen());
  const dirent* entry = inner.next();
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(std::string(entry->d_name), "Ann_0001.JPG");
  EXPECT_EQ(inner.next(), nullptr);
  EXPECT_FALSE(inner.failed());
  EXPECT_FALSE(FolderReader(parent, "Ben").isOpen());
  EXPECT_FALSE(FolderReader(FolderReader(path("missing")), "Ann").isOpen());
}

TEST_F(FolderReaderTest, TellsTheStatusOfAnEntryAndNoneOfOneThatIsGone) {
  makeFile("file");
  makeLink("link", "file");
  const FolderReader reader(root);
  ASSERT_TRUE(reader.status("link"));
  EXPECT_TRUE(S_ISREG(reader.status("link")->st_mode));
  EXPECT_FALSE(reader.status("missing"));
  EXPECT_FALSE(FolderReader(path("missing")).status("file"));
}

TEST_F(FolderReaderTest, CallsMissingOnlyWhatTheSystemSaysIsNotThere) {
  makeFile("file");
  makeLink("nowhere", "none");
  makeLink("loop", "loop");
  EXPECT_FALSE(pathIsMissing(path("file")));
  EXPECT_TRUE(pathIsMissing(path("none")));
  EXPECT_TRUE(pathIsMissing(path("file/below")));
  EXPECT_TRUE(pathIsMissing(path("nowhere")));
  EXPECT_FALSE(pathIsMissing(path("loop")));
}

TEST_F(FolderReaderTest, ReadsAHundredThousandEntries) {
  constexpr int kEntries = 100'000;
  for (int i = 0; i < kEntries; ++i) {
    // Names of the same file: a new file for each would take long.
    if (i % 50'000 == 0) makeFile(std::to_string(i));
    if (i % 50'000 != 0) {
      ASSERT_EQ(::link(path(std::to_string(i / 50'000 * 50'000)).c_str(), path(std::to_string(i)).c_str()),
                0);
    }
  }
  EXPECT_EQ(entriesOf(root).size(), static_cast<std::size_t>(kEntries));
}

}  // namespace
}  // namespace ambrel
