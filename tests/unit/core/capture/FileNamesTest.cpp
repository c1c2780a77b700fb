// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "core/capture/FileNames.h"

using namespace ambrel;

TEST(FileNames, AnEmptyNameOrOneOfSpacesIsUntitled) {
  EXPECT_EQ(sanitize_filename(""), "untitled");
  EXPECT_EQ(sanitize_filename("   "), "untitled");
}

TEST(FileNames, ReplacesSlashAndColonAndTrimsOuterSpaces) {
  EXPECT_EQ(sanitize_filename("  a/b:c  "), "a-b-c");
}

TEST(FileNames, ReplacesEveryReservedByte) {
  EXPECT_EQ(sanitize_filename("a\"b*c/d:e<f>g?h\\i|j"), "a-b-c-d-e-f-g-h-i-j");
}

TEST(FileNames, ReplacesEveryControlByteAndOnlyThose) {
  for (int byte = 0; byte < 0x20; ++byte) {
    EXPECT_EQ(sanitize_filename(std::string("x") + static_cast<char>(byte) + "y"), "x-y") << byte;
  }
  EXPECT_EQ(sanitize_filename("x\x7fy"), "x\x7fy");
}

TEST(FileNames, AReplacedTabIsNotTrimmed) {
  EXPECT_EQ(sanitize_filename("\tBob"), "-Bob");
  EXPECT_EQ(sanitize_filename("Bob\n"), "Bob-");
}

TEST(FileNames, KeepsLettersOfAnyScriptAndPunctuation) {
  for (const std::string name : {"José Müller-Lüdenscheidt", "李小龙", "О'Брайен, №5 & Ко.", "🙂 #1",
                                 "\xd7\x93\xd7\x9f", "inner  spaces", "\xc2\xa0nbsp\xc2\xa0"}) {
    EXPECT_EQ(sanitize_filename(name), name);
  }
}

TEST(FileNames, KeepsBytesThatAreNotText) {
  EXPECT_EQ(sanitize_filename("\xff\xfe/\x80"), "\xff\xfe-\x80");
}

TEST(FileNames, KeepsNamesMadeOnlyOfDots) {
  EXPECT_EQ(sanitize_filename("."), ".");
  EXPECT_EQ(sanitize_filename(".."), "..");
}

TEST(FileNames, SanitisingTwiceChangesNothingMore) {
  for (const std::string name : {" a/b ", "\t \t", "...", " : "}) {
    const std::string once = sanitize_filename(name);
    EXPECT_EQ(sanitize_filename(once), once);
  }
}

TEST(FileNames, PadsTheNumberToFourDigitsAndLetsItGrow) {
  EXPECT_EQ(photoFileName("Jane Doe_FR", 7, "CR3"), "Jane Doe_FR_0007.CR3");
  EXPECT_EQ(photoFileName("Bob", 9999, "JPG"), "Bob_9999.JPG");
  EXPECT_EQ(photoFileName("Bob", 10000, "JPG"), "Bob_10000.JPG");
  EXPECT_EQ(photoFileName("Bob", 9223372036854775807, "JPG"), "Bob_9223372036854775807.JPG");
}

TEST(FileNames, AFolderNameThatLooksLikeAFormatStaysAsItIs) {
  EXPECT_EQ(photoFileName("%1 %2 100%", 1, "%3"), "%1 %2 100%_0001.%3");
}

TEST(FileNames, TheExtensionIsWhatFollowsTheLastDotOfTheName) {
  const std::vector<std::pair<QString, QString>> cases = {{"/x/IMG_1.JPG", "JPG"}, {"/x/a.b.cr3", "cr3"},
                                                          {"/x.y/IMG_1", ""},      {"/x/.jpg", ""},
                                                          {"/x/IMG.", ""},         {"", ""}};
  for (const auto& [path, extension] : cases)
    EXPECT_EQ(pathExtension(path), extension) << path.toStdString();
}

TEST(FileNames, CountsFourteenExtensionsInAnyLetterCase) {
  const std::vector<QString> counted = {"jpg", "jpeg", "png", "tif", "tiff", "heic", "heif",
                                        "cr2", "cr3",  "crw", "raw", "dng",  "nef",  "arw"};
  for (const QString& extension : counted) {
    EXPECT_TRUE(isImageFileName("IMG." + extension)) << extension.toStdString();
    EXPECT_TRUE(isImageFileName("/x/IMG." + extension.toUpper())) << extension.toStdString();
  }
  for (const QString name : {"IMG.xmp", "IMG.mov", "IMG", "jpg", "IMG.jpg.txt", "IMG.jpg ", "a.jpg/b"}) {
    EXPECT_FALSE(isImageFileName(name)) << name.toStdString();
  }
}

TEST(FileNames, TellsAPhotoByItsExtensionWhateverBytesComeBeforeIt) {
  EXPECT_TRUE(is_image_file_name("\xff\xfe.JPG"));
  EXPECT_TRUE(is_image_file_name("a b.heif"));
  EXPECT_FALSE(is_previewable_image_path("a b.heif"));
  EXPECT_TRUE(is_previewable_image_path("/x.y/\xff.Tiff"));
  EXPECT_FALSE(is_image_file_name("/x.jpg/\xff"));
  EXPECT_FALSE(is_image_file_name("a.jp\xff"));
  EXPECT_EQ(path_extension("/x/.jpg"), "");
  EXPECT_EQ(path_extension("/x/a.b."), "");
}

TEST(FileNames, PreviewsSixExtensionsAndNoRawFormat) {
  for (const QString name : {"a.jpg", "a.JPEG", "a.png", "a.tif", "a.TIFF", "a.heic"}) {
    EXPECT_TRUE(isPreviewableImagePath(name)) << name.toStdString();
  }
  for (const QString name : {"a.heif", "a.cr2", "a.CR3", "a.crw", "a.raw", "a.dng", "a.nef", "a.arw"}) {
    EXPECT_FALSE(isPreviewableImagePath(name)) << name.toStdString();
  }
}
