// SPDX-License-Identifier: Apache-2.0
// The photos on disk, and the list beside them, against a model that does everything the slow and plain way:
// 10,000 random sequences of shooting, retouching the list, moving photos that were filed under the wrong
// name, and of other programs at work in the same folders. After every step both have the same list, counts,
// folders and files, and every photo that was ever made is there with its bytes.
#include "integration/capture/PhotosModelFixture.h"

namespace ambrel {
namespace {

constexpr unsigned kSequences = 1'250;  // of each of eight tests, which can run side by side
constexpr int kSteps = 12;
constexpr std::size_t kMostRows = 12;

class PhotosModelTest : public PhotosModelFixture {
 protected:
  PhotosModelTest() {
    wholeNames = {"Ann", "Ann", "ann", "Bea", "Bea", "Ann_FR", "Ann_Lee", "Ann Lee", "A", ".."};
    pieces = {"Ann",
              "_",
              "_FR",
              " ",
              "/",
              ":",
              ".",
              "..",
              "-",
              "\u00e9",
              "e\u0301",
              "😀",
              "\u202e",
              "\t",
              "\n",
              "\r",
              "\x7f",
              "%1",
              "untitled",
              "locked",
              QString(QChar::Null),
              QString(150, QChar(0xe9)),
              QString(245, 'x')};
  }

  void start(unsigned seed) {
    startShoot(seed);
    startWith({{"Ann"}, {"Bea", "note", "0"}, {"Ann Lee", "", "3", "1"}, {".."}});
    layOutSome({"Photos/Ann/Ann_0001.JPG", "Photos/Ann/IMG_7.CR3", "Photos/Ann_FR/Ann_FR_0001.JPG",
                "Photos/Ann_Lee/Ann_Lee_0003.JPG", "Photos/Bea/Bea_0002.JPG", "Photos/Bea/Bea_10000.JPG",
                "Photos/Bea_FR/Ann_0001.JPG", "Photos/Ann Lee/locked.JPG", ".._0001.JPG",
                "Backup/Ann/Ann_0001.JPG", "Backup/Bea/Bea_0002.JPG", "Backup/Ann Lee/notes.txt"});
  }

  void step() {
    using Self = PhotosModelTest;
    using Step = void (Self::*)();
    static constexpr Step kStepKinds[] = {&Self::filePhotos,
                                          &Self::filePhotos,
                                          &Self::filePhotos,
                                          &Self::filePhotos,
                                          &Self::filePhotos,
                                          &Self::renameAnyRow,
                                          &Self::renameAnyRow,
                                          &Self::renameAnyRow,
                                          &Self::dropAnyRow,
                                          &Self::dropAnyRow,
                                          &Self::dropAnyRow,
                                          &Self::renameAnyFolder,
                                          &Self::renameAnyFolder,
                                          &Self::switchTag,
                                          &Self::typeCounter,
                                          &Self::chooseTarget,
                                          &Self::switchBackup,
                                          &Self::makeFileOutside,
                                          &Self::makeFileOutside,
                                          &Self::makeFileOutside,
                                          &Self::makeFolderOutside,
                                          &Self::makeFolderOutside,
                                          &Self::removeOutside,
                                          &Self::moveOutside,
                                          &Self::rescan,
                                          &Self::rescan,
                                          &Self::paste,
                                          &Self::insertRow,
                                          &Self::deleteRow,
                                          &Self::reorder,
                                          &Self::editCell,
                                          &Self::editCell,
                                          &Self::toggleMarker,
                                          &Self::takePhoto,
                                          &Self::search,
                                          &Self::addFromSearch,
                                          &Self::filterOrSort,
                                          &Self::selectInTable,
                                          &Self::selectInTable,
                                          &Self::dropFile};
    const Step chosen =
        model.rows.size() > kMostRows ? &Self::import : kStepKinds[below(std::size(kStepKinds))];
    (this->*chosen)();
  }
};

TEST_P(PhotosModelTest, AreWhatThePlainModelHasAfterEveryStep) {
  for (unsigned seed = GetParam() * kSequences; seed < (GetParam() + 1) * kSequences; ++seed) {
    start(seed);
    for (int number = 0; number < kSteps && !HasFatalFailure(); ++number) {
      step();
      expectSame();
      if (HasFailure()) FAIL() << "sequence " << seed << ", step " << number;
    }
    expectSameAfterReload();
    if (HasFailure()) FAIL() << "sequence " << seed;
  }
}

INSTANTIATE_TEST_SUITE_P(OfTenThousandSequences, PhotosModelTest, ::testing::Range(0U, 8U));

}  // namespace
}  // namespace ambrel
