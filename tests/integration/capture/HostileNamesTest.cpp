// SPDX-License-Identifier: Apache-2.0
// Names that no sensible person has, each through filing, counting, moving and renaming, beside every other
// one.

#include "core/base/Text.h"
#include "integration/capture/PhotosModelFixture.h"

namespace ambrel {
namespace {

using Names = std::vector<std::string>;

std::string times(int count, const std::string& text) {
  std::string all;
  for (int i = 0; i < count; ++i)
    all += text;
  return all;
}

Names hostileNames() {
  return {"..",
          ".",
          "",
          "...",
          " ",
          "-rf",
          "~",
          ".hidden",
          "a/b:c",
          "/",
          "\\",
          "%1 %2",
          "Ann\n",
          "untitled",
          "Ann_FR",
          std::string("a\0b", 3),
          "\xff\xfe",
          "Jos\u00e9",
          "Jose\u0301",
          "😀",
          "\u202eevil",
          "\u200f",
          times(300, "\u00e9"),  // longer than a name may be
          times(250, "x"),       // the folder's name fits, and the photo's does not
          times(246, "x")};      // the photo's just fits
}

Names controlBytes() {
  Names names = {"\x7f"};
  for (char byte = 0; byte < 0x20; ++byte)
    names.push_back(std::string("A") + byte);
  return names;
}

class HostileNamesTest : public PhotosModelFixture {
 protected:
  HostileNamesTest() { answersVary = false; }

  void select(qint64 row) {
    list.tableViewSelectionDidChange({row});
    model.selected = row;
    model.tableSelection = {row};
  }
  void fileOnRow(qint64 row, const std::vector<std::string>& extensions) {
    select(row);
    std::vector<std::string> downloads;
    for (const std::string& extension : extensions)
      downloads.push_back(download(extension));
    file(downloads);
    expectSame();
  }
  void shootMoveAndRename(const std::string& name, const std::string& other) {
    startShoot(1);
    startWith({{name}, {other, "", "7"}});
    fileOnRow(0, {"JPG", "CR3"});
    fileOnRow(1, {"JPG"});
    rescan();
    expectSame();
    dropRowOntoRow(0, 1);
    expectSame();
    fileOnRow(model.selected, {"JPG"});
    renameRow(1, std_to_ns(name));
    expectSame();
    for (const std::string& folder : foldersOnDesk()) {
      if (!photos.disk.isFolder(folder)) continue;  // merged meanwhile
      renameFolder(folder, std_to_ns(other));
      expectSame();
    }
    rescan();
    expectSame();
    expectSameAfterReload();
  }
};

constexpr unsigned kShares = 4;

TEST_P(HostileNamesTest, LoseNoPhotoBesideAnyOtherName) {
  const Names names = hostileNames();
  for (std::size_t i = GetParam(); i < names.size(); i += kShares) {
    for (const std::string& other : names) {
      shootMoveAndRename(names[i], other);
      if (HasFailure()) FAIL() << '"' << names[i] << "\" and \"" << other << '"';
    }
  }
}

TEST_P(HostileNamesTest, LoseNoPhotoWithAnyControlByte) {
  const Names names = controlBytes();
  for (std::size_t i = GetParam(); i < names.size(); i += kShares) {
    for (const std::string& other : Names{"Bea", names[i] + "b"}) {
      shootMoveAndRename(names[i], other);
      if (HasFailure()) FAIL() << "byte " << int(names[i].back());
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Shares, HostileNamesTest, ::testing::Range(0U, kShares));

}  // namespace
}  // namespace ambrel
