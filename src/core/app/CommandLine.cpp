// SPDX-License-Identifier: Apache-2.0
#include "core/app/CommandLine.h"

namespace ambrel {

Result<CommandLine> parseCommandLine(const QStringList& arguments) {
  CommandLine line;
  for (const QString& argument : arguments) {
    if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
      line.task = CommandLine::Task::Help;
    } else if (argument == QLatin1String("--version")) {
      line.task = CommandLine::Task::Version;
    } else if (argument == QLatin1String("--demo")) {
      line.task = CommandLine::Task::Demo;
    } else if (argument == QLatin1String("--auto")) {
      line.automatic = true;
    } else if (argument == QLatin1String("--unattended")) {
      line.unattended = true;
    } else {
      return Failure{QStringLiteral("Unknown argument \"%1\". Try --help.").arg(argument)};
    }
  }
  if (line.task == CommandLine::Task::Run && (line.automatic || line.unattended)) {
    return Failure{QStringLiteral("--auto and --unattended go with --demo.")};
  }
  return line;
}

QString commandLineHelp() {
  return QStringLiteral(
      "Usage: ambrel_photo_tether [--demo [--auto | --unattended]]\n"
      "Tethered capture for Canon cameras.\n"
      "\n"
      "  --demo        run on a data folder of its own with a camera on loopback\n"
      "  --auto        demo: take a picture every four seconds\n"
      "  --unattended  demo: take eight pictures, compare what was filed, and end with 0 or 1\n"
      "  --version     print the version\n"
      "  --help        print this text\n");
}

}  // namespace ambrel
