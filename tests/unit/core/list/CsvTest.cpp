// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <random>

#include "core/list/Csv.h"

namespace ambrel {
namespace {

using Fields = std::vector<std::string>;

std::vector<std::string> linesOf(std::string_view bytes) {
  std::vector<std::string> lines;
  while (!bytes.empty())
    lines.emplace_back(take_csv_line(bytes));
  return lines;
}

TEST(CsvLines, EndAtLineFeedsOnly) {
  EXPECT_EQ(linesOf("a\nb\rc\n\nd"), (Fields{"a", "b\rc", "", "d"}));
}

TEST(CsvLines, LoseOneCarriageReturnAtTheEnd) {
  EXPECT_EQ(linesOf("a\r\nb\r\r\n\r\nc\r"), (Fields{"a", "b\r", "", "c"}));
}

TEST(CsvLines, NeedNoLineFeedAfterTheLast) {
  EXPECT_EQ(linesOf("a\nb"), (Fields{"a", "b"}));
  EXPECT_EQ(linesOf("a\nb\n"), (Fields{"a", "b"}));
}

TEST(CsvLines, BreakInsideQuotesToo) {
  EXPECT_EQ(linesOf("\"a\nb\""), (Fields{"\"a", "b\""}));
}

struct ParseCase {
  std::string_view line;
  Fields fields;
};

TEST(Csv, ParsesALineIntoFields) {
  const std::vector<ParseCase> cases = {
      {"", {""}},
      {"Anna", {"Anna"}},
      {"\"Smith, Anna\",note", {"Smith, Anna", "note"}},
      {"\"He said \"\"hi\"\"\",x", {"He said \"hi\"", "x"}},
      {"a,", {"a", ""}},
      {",", {"", ""}},
      {" a , b ", {" a ", " b "}},
      {"ab\"c,d\"e", {"abc,de"}},
      {"\"a\"b\"c\"", {"abc"}},
      {"\"open, to the end", {"open, to the end"}},
      {"\"\"", {""}},
      {"\"\"\"\"", {"\""}},
      {"\"\"\"", {"\""}},
      {"a\"\"b", {"ab"}},  // outside quotes two of them toggle twice
      {"\"cr\r\",x", {"cr\r", "x"}},
      {std::string_view("n\0ul,b", 6), {std::string("n\0ul", 4), "b"}},
      {"\xff\xfe,\xc3", {"\xff\xfe", "\xc3"}},
      {"a,b,c,d,e,f", {"a", "b", "c", "d", "e", "f"}},
  };
  for (const ParseCase& c : cases) {
    EXPECT_EQ(parse_csv_line(c.line), c.fields) << c.line;
    EXPECT_EQ(parse_first_csv_field(c.line), c.fields.front()) << c.line;
  }
}

TEST(Csv, QuotesOnlyCellsThatNeedIt) {
  EXPECT_EQ(csv_escape_cell(""), "");
  EXPECT_EQ(csv_escape_cell("Anna Maria"), "Anna Maria");
  EXPECT_EQ(csv_escape_cell(" blank; tab\t "), " blank; tab\t ");
  EXPECT_EQ(csv_escape_cell("a,b"), "\"a,b\"");
  EXPECT_EQ(csv_escape_cell("say \"hi\""), "\"say \"\"hi\"\"\"");
  EXPECT_EQ(csv_escape_cell("a\rb"), "\"a\rb\"");
  EXPECT_EQ(csv_escape_cell("a\nb"), "\"a\nb\"");
  EXPECT_EQ(csv_escape_cell("\""), "\"\"\"\"");
  EXPECT_EQ(csv_escape_cell("Łukasz 🚩 \xff"), "Łukasz 🚩 \xff");
}

TEST(Csv, NeverWritesMoreThanTheLimitOfACell) {
  for (const std::string& cell : {std::string(), std::string(40, '"'), std::string(40, ',')})
    EXPECT_LE(csv_escape_cell(cell).size(), csv_escaped_limit(cell));
}

TEST(Csv, ReadsBackEveryCellWithoutLineBreaksThatItWrites) {
  std::mt19937 random(20260504);
  const std::string_view likely = "\",,\"ab \t;\r";
  for (int round = 0; round < 20'000; ++round) {
    Fields written(1 + random() % 5);
    std::string line;
    for (std::string& cell : written) {
      for (std::size_t length = random() % 40; length > 0; --length) {
        const char any = static_cast<char>(random() % 256);
        const char next = random() % 2 == 0 ? likely[random() % likely.size()] : any;
        if (next != '\n') cell.push_back(next);
      }
      if (&cell != &written.front()) line += ',';
      line += csv_escape_cell(cell);
    }
    ASSERT_EQ(parse_csv_line(line), written) << "round " << round;
    ASSERT_EQ(parse_first_csv_field(line), written.front()) << "round " << round;
  }
}

}  // namespace
}  // namespace ambrel
