// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "camera/PhotoFormat.h"

namespace ambrel::camera {
namespace {

std::vector<unsigned char> bytes(const std::string& text) {
  return {text.begin(), text.end()};
}

TEST(PhotoFormat, IsReadFromTheFirstBytes) {
  EXPECT_EQ(formatOf(bytes("\xFF\xD8\xFF\xE1....")), PhotoFormat::Jpeg);
  EXPECT_EQ(formatOf(bytes(std::string("\0\0\0\x18"
                                       "ftypcrx ",
                                       12))),
            PhotoFormat::Cr3);
  EXPECT_EQ(formatOf(bytes(std::string("\0\0\0\x18"
                                       "ftypheic",
                                       12))),
            PhotoFormat::Heif);
  EXPECT_EQ(formatOf(bytes(std::string("\0\0\0\x18"
                                       "ftypmif1",
                                       12))),
            PhotoFormat::Heif);
  EXPECT_EQ(formatOf(bytes(std::string("II*\0\x10\0\0\0CR\x02\0", 12))), PhotoFormat::Cr2);
}

TEST(PhotoFormat, IsUnknownForAnythingElse) {
  EXPECT_EQ(formatOf({}), PhotoFormat::Unknown);
  EXPECT_EQ(formatOf(bytes("\xFF\xD8")), PhotoFormat::Unknown);
  EXPECT_EQ(formatOf(bytes(std::string("\0\0\0\x18"
                                       "ftypqt  ",
                                       12))),
            PhotoFormat::Unknown);
  EXPECT_EQ(formatOf(bytes(std::string("II*\0\x10\0\0\0....", 12))), PhotoFormat::Unknown);
}

TEST(PhotoFormat, LeavesANameWhoseExtensionFits) {
  EXPECT_EQ(nameForFormat("IMG_0001.JPG", PhotoFormat::Jpeg), "IMG_0001.JPG");
  EXPECT_EQ(nameForFormat("IMG_0001.jpeg", PhotoFormat::Jpeg), "IMG_0001.jpeg");
  EXPECT_EQ(nameForFormat("IMG_0001.HIF", PhotoFormat::Heif), "IMG_0001.HIF");
  EXPECT_EQ(nameForFormat("IMG_0001.heic", PhotoFormat::Heif), "IMG_0001.heic");
}

TEST(PhotoFormat, LeavesANameWhoseContentIsNotKnown) {
  EXPECT_EQ(nameForFormat("DSC_0001.NEF", PhotoFormat::Unknown), "DSC_0001.NEF");
}

TEST(PhotoFormat, CorrectsAWrongExtensionInItsLetterCase) {
  EXPECT_EQ(nameForFormat("capt0003.jpg", PhotoFormat::Heif), "capt0003.hif");
  EXPECT_EQ(nameForFormat("IMG_0001.JPG", PhotoFormat::Cr3), "IMG_0001.CR3");
  EXPECT_EQ(nameForFormat("capt0003.cr2", PhotoFormat::Cr3), "capt0003.cr3");
}

TEST(PhotoFormat, GivesANameWithoutExtensionOne) {
  EXPECT_EQ(nameForFormat("photo", PhotoFormat::Jpeg), "photo.JPG");
}

TEST(PhotoFormat, FindsTheEndMarkerOfAJpegAlsoBeforePadding) {
  EXPECT_TRUE(endsLikeJpeg(bytes("abc\xFF\xD9")));
  EXPECT_TRUE(endsLikeJpeg(bytes(std::string("abc\xFF\xD9\0\0\0", 8))));
}

TEST(PhotoFormat, MissesTheEndMarkerOfAJpegThatWasCut) {
  EXPECT_FALSE(endsLikeJpeg({}));
  EXPECT_FALSE(endsLikeJpeg(bytes("abc")));
  EXPECT_FALSE(endsLikeJpeg(bytes("abc\xFF")));
  EXPECT_FALSE(endsLikeJpeg(bytes("abc\xFF\xD9xyz")));
  EXPECT_FALSE(endsLikeJpeg(bytes(std::string("\0\0\0\0", 4))));
}

TEST(PhotoFormat, TellsRawNamesFromFinishedOnes) {
  EXPECT_TRUE(isRawName("IMG_0001.CR3"));
  EXPECT_TRUE(isRawName("capt0001.cr2"));
  EXPECT_FALSE(isRawName("IMG_0001.JPG"));
  EXPECT_FALSE(isRawName("IMG_0001.HIF"));
  EXPECT_FALSE(isRawName("CR3"));
}

TEST(PhotoFormat, TellsPhotosFromFilmsAndBookkeeping) {
  EXPECT_TRUE(isPhotoName("IMG_0001.JPG"));
  EXPECT_TRUE(isPhotoName("IMG_0001.CR3"));
  EXPECT_TRUE(isPhotoName("IMG_0001"));
  EXPECT_FALSE(isPhotoName("MVI_0002.MP4"));
  EXPECT_FALSE(isPhotoName("MVI_0002.mov"));
  EXPECT_FALSE(isPhotoName("M0100.CTG"));
}

TEST(PhotoFormat, MakesAnyNameOfTheCameraSafe) {
  EXPECT_EQ(safeName("IMG_0001.JPG"), "IMG_0001.JPG");
  EXPECT_EQ(safeName("../../etc/passwd"), "_._.._etc_passwd");
  EXPECT_EQ(safeName(".."), "_.");
  EXPECT_EQ(safeName(""), "photo");
  EXPECT_EQ(safeName("a\nDOWNLOADED|/b"), "a_DOWNLOADED__b");
  EXPECT_EQ(safeName("caf\xC3\xA9.JPG"), "caf__.JPG");
}

TEST(PhotoFormat, ShortensALongNameAndKeepsItsExtension) {
  const std::string shortened = safeName(std::string(400, 'a') + ".CR3");
  EXPECT_LE(shortened.size(), 200u);
  EXPECT_EQ(shortened.substr(shortened.size() - 4), ".CR3");
}

}  // namespace
}  // namespace ambrel::camera
