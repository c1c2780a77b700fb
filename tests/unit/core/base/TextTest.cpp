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

TEST(PluralEnding, IsEmptyForExactlyOne) {
  EXPECT_EQ(pluralEnding(1), "");
  for (const qint64 count : {qint64{0}, qint64{2}, qint64{-1}, qint64{1000}}) {
    EXPECT_EQ(pluralEnding(count), "s") << count;
  }
}

}  // namespace
}  // namespace ambrel
