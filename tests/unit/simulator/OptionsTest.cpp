// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "simulator/Options.h"

namespace ambrel::simulator {
namespace {

TEST(Options, TakeAnyFreePortsByDefault) {
  const Options options = parse_options({});
  EXPECT_EQ(options.port, 0);
  EXPECT_EQ(options.controlPort, 0);
  EXPECT_TRUE(options.standardInput);
  EXPECT_FALSE(options.help);
  EXPECT_EQ(options.error, "");
}

TEST(Options, ReadEveryValue) {
  const Options options =
      parse_options({"--port", "15740", "--control-port", "65535", "--jpeg-size", "5472x3648", "--seed",
                     "18446744073709551615", "--no-stdin", "--first-shot", "9999"});
  EXPECT_EQ(options.error, "");
  EXPECT_EQ(options.port, 15740);
  EXPECT_EQ(options.controlPort, 65535);
  EXPECT_EQ(options.camera.width, 5472);
  EXPECT_EQ(options.camera.height, 3648);
  EXPECT_EQ(options.camera.seed, 18446744073709551615U);
  EXPECT_EQ(options.camera.firstShot, 9999U);
  EXPECT_FALSE(options.standardInput);
}

TEST(Options, NameWhatTheyCannotFollow) {
  const std::vector<std::vector<std::string>> wrong = {
      {"--port"},
      {"--port", "65536"},
      {"--port", "-1"},
      {"--port", "12x"},
      {"--port", ""},
      {"--jpeg-size", "1200"},
      {"--jpeg-size", "0x800"},
      {"--jpeg-size", "99999x1"},
      {"--jpeg-size", "x"},
      {"--jpeg-size", "12x3x"},
      {"--seed", "one"},
      {"--first-shot", "0"},
      {"--first-shot", "0"},
      {"--sped", "1"},
      {"photo"},
  };
  for (const std::vector<std::string>& arguments : wrong) {
    EXPECT_NE(parse_options(arguments).error.find(arguments[0]), std::string::npos) << arguments.back();
  }
}

TEST(Options, ExplainThemselvesAndTheCommands) {
  EXPECT_TRUE(parse_options({"--help"}).help);
  const std::string help = help_text();
  for (const std::string word : {"--port",
                                 "--control-port",
                                 "--jpeg-size",
                                 "--seed",
                                 "--no-stdin",
                                 "--first-shot",
                                 "READY ptpip=P control=C",
                                 "shoot",
                                 "photos",
                                 "drop",
                                 "cable",
                                 "power",
                                 "card",
                                 "busy",
                                 "set",
                                 "status",
                                 "quit",
                                 "kind=",
                                 "size=",
                                 "rawsize=",
                                 "first=",
                                 "interval=",
                                 "after=",
                                 "how=",
                                 "rate=",
                                 "silent="}) {
    EXPECT_NE(help.find(word), std::string::npos) << word;
  }
}

}  // namespace
}  // namespace ambrel::simulator
