// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/base/Text.h"
#include "support/Printing.h"

namespace ambrel {
namespace {

TEST(NSTrim, TakesWhiteSpaceAndLineBreaksFromBothEnds) {
  EXPECT_EQ(NSTrim(" \t\r\n Jane  Doe \n\r\n"), "Jane  Doe");
  EXPECT_EQ(NSTrim(QString(QChar(0x00A0)) + "a" + QChar(0x2003)), "a");
  EXPECT_EQ(NSTrim(QString(QChar(0x2028)) + "a" + QChar(0x0085)), "a");
  EXPECT_EQ(NSTrim(" \n "), "");
  EXPECT_EQ(NSTrim(QString()), "");
}

TEST(NSTrim, LeavesControlBytesAlone) {
  const QString nul = QString(QChar(0)) + "a" + QChar(0);
  EXPECT_EQ(NSTrim(nul), nul);
}

TEST(Bytes, SurviveTheWayThroughTextAndBack) {
  for (const std::string& bytes :
       {std::string("José 山田 😀"), std::string("a\0b", 3), std::string("\xEF\xBB\xBFmark"), std::string()}) {
    EXPECT_EQ(ns_to_std(std_to_ns(bytes)), bytes);
  }
}

TEST(Bytes, AreNoTextWhenTheyAreNotUtf8) {
  for (const char* bytes : {"Jos\xC3", "\xFF", "\xC0\xAF", "\xED\xA0\x80", "ok\x80", "\xF4\x90\x80\x80"}) {
    EXPECT_EQ(std_to_ns(bytes), "");
  }
}

TEST(Bytes, AreNoneForANullText) {
  EXPECT_EQ(ns_to_std(QString()), "");
}

TEST(LowerCase, IsAppendedAsTheTextWouldGiveIt) {
  for (const std::string& bytes :
       {std::string("Anna-Maria O'Neil @[`{ 9"), std::string("ŁUKASZ Straße ΣΟΦΊΑΣ"),
        std::string("İstanbul \u212A"), std::string("A\0B", 3), std::string("😀 JOSÉ"),
        std::string("\xEF\xBB\xBFMark"), std::string()}) {
    QByteArray out("Before ");
    append_lower_cased(out, bytes);
    EXPECT_EQ(out, "Before " + std_to_ns(bytes).toLower().toUtf8());
  }
}

TEST(LowerCase, IsThatOfTheTextForEveryCharacterOfTheFirstPlanes) {
  for (char32_t character = 0; character < 0x3000; ++character) {
    const QString text = QString::fromUcs4(&character, 1) + QLatin1Char('A');
    QByteArray out;
    append_lower_cased(out, ns_to_std(text));
    ASSERT_EQ(out, text.toLower().toUtf8()) << static_cast<unsigned>(character);
  }
}

TEST(LowerCase, AppendsNothingForBytesThatAreNotUtf8) {
  for (const char* bytes : {"JOS\xC3", "\xC3\xFF", "\xC2\xC3\x89", "\x80", "\xC3\x89\xFF"}) {
    QByteArray out("before");
    append_lower_cased(out, bytes);
    EXPECT_EQ(out, "before") << bytes;
  }
}

TEST(PluralEnding, IsEmptyForExactlyOne) {
  EXPECT_EQ(pluralEnding(1), "");
  for (const qint64 count : {qint64{0}, qint64{2}, qint64{-1}, qint64{1000}}) {
    EXPECT_EQ(pluralEnding(count), "s") << count;
  }
}

}  // namespace
}  // namespace ambrel
