// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "core/app/CommandLine.h"

using namespace ambrel;
using Task = CommandLine::Task;

namespace {

TEST(CommandLine, RunsTheApplicationWithoutArguments) {
  EXPECT_EQ(parseCommandLine({}).value(), CommandLine());
}

TEST(CommandLine, KnowsTheKindsOfDemo) {
  EXPECT_EQ(parseCommandLine({"--demo"}).value(), (CommandLine{Task::Demo, false, false}));
  EXPECT_EQ(parseCommandLine({"--demo", "--auto"}).value(), (CommandLine{Task::Demo, true, false}));
  EXPECT_EQ(parseCommandLine({"--unattended", "--demo"}).value(), (CommandLine{Task::Demo, false, true}));
}

TEST(CommandLine, OffersHelpAndVersion) {
  EXPECT_EQ(parseCommandLine({"--help"}).value().task, Task::Help);
  EXPECT_EQ(parseCommandLine({"-h"}).value().task, Task::Help);
  EXPECT_EQ(parseCommandLine({"--version"}).value().task, Task::Version);
}

TEST(CommandLine, NamesTheArgumentThatItDoesNotKnow) {
  EXPECT_EQ(parseCommandLine({"--dmeo"}).error(), "Unknown argument \"--dmeo\". Try --help.");
}

TEST(CommandLine, RefusesTheDemosOptionsWithoutADemo) {
  EXPECT_EQ(parseCommandLine({"--auto"}).error(), "--auto and --unattended go with --demo.");
}

TEST(CommandLine, ExplainsEveryArgument) {
  for (const char* argument : {"--demo", "--auto", "--unattended", "--version", "--help"}) {
    EXPECT_TRUE(commandLineHelp().contains(argument)) << argument;
  }
}

}  // namespace
