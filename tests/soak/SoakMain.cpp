// SPDX-License-Identifier: Apache-2.0
// A day of shooting in a few minutes, with everything going wrong: soak [--minutes N] [--seed S] [--plan].
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QTemporaryDir>
#include <cstdio>
#include <unistd.h>
#include <vector>

#include "soak/Day.h"

using namespace ambrel;
using namespace ambrel::soak;

namespace {

constexpr const char* kRootVariable = "AMBREL_SOAK_ROOT";

void say(const QStringList& lines) {
  for (const QString& text : lines)
    std::puts(text.toUtf8().constData());
  std::fflush(stdout);
}

// The same program once more, with a drive below `root` that can be told to misbehave. Returns only where
// that fails.
int runOnFaultyDrive(char** argv, const QString& root) {
  QProcessEnvironment environment = DriveMode(root + QStringLiteral("/mode")).environmentFor(root);
  environment.insert(QString::fromLatin1(kRootVariable), root);
  // Where workers keep the identity that they show to the camera, and their private homes.
  environment.insert(QStringLiteral("AMBREL_HOME"), root + QStringLiteral("/worker"));
  environment.insert(QStringLiteral("TMPDIR"), root + QStringLiteral("/home/tmp"));
  std::vector<QByteArray> words;
  for (const QString& word : environment.toStringList())
    words.push_back(word.toLocal8Bit());
  std::vector<char*> pointers;
  for (QByteArray& word : words)
    pointers.push_back(word.data());
  pointers.push_back(nullptr);
  ::execve("/proc/self/exe", argv, pointers.data());
  std::perror("soak");
  return 1;
}

int runDay(const Plan& plan, std::uint64_t seed, const QString& root) {
  const Places places(root);
  const DriveMode drive(root + QStringLiteral("/mode"));
  Day day(plan, seed, places, drive);
  const QStringList wrong = day.run();
  say(day.table());
  say(wrong);
  if (wrong.isEmpty()) {
    QDir(root).removeRecursively();
  } else {
    say({QStringLiteral("What is left, and a diary, lie in ") + root});
  }
  const QLocale english(QLocale::English);
  say({QStringLiteral("%1 photos, %2 faults, %3 violations")
           .arg(english.toString(static_cast<qulonglong>(day.photos())))
           .arg(day.faults())
           .arg(wrong.size())});
  return wrong.isEmpty() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  QCommandLineParser line;
  line.addOption({QStringLiteral("minutes"), QStringLiteral("How long to shoot."), QStringLiteral("N"),
                  QStringLiteral("10")});
  line.addOption({QStringLiteral("seed"), QStringLiteral("Of the plan of the day."), QStringLiteral("S"),
                  QStringLiteral("1")});
  line.addOption({QStringLiteral("plan"), QStringLiteral("Print the plan of the day and do nothing.")});
  line.addHelpOption();
  line.process(application);
  bool minutesKnown = false;
  bool seedKnown = false;
  const double minutes = line.value(QStringLiteral("minutes")).toDouble(&minutesKnown);
  const std::uint64_t seed = line.value(QStringLiteral("seed")).toULongLong(&seedKnown);
  if (!minutesKnown || !seedKnown || minutes < 0.2 || minutes > 1440) {
    std::fputs("soak: --minutes takes 0.2 to 1440, --seed a number\n", stderr);
    return 2;
  }
  const Plan plan = makePlan(minutes, seed);
  if (line.isSet(QStringLiteral("plan"))) {
    say(linesOf(plan));
    return 0;
  }
  const QString root = qEnvironmentVariable(kRootVariable);
  if (!root.isEmpty()) return runDay(plan, seed, root);
  QTemporaryDir folder;
  folder.setAutoRemove(false);
  if (!folder.isValid()) {
    std::fprintf(stderr, "soak: %s\n", folder.errorString().toUtf8().constData());
    return 1;
  }
  return runOnFaultyDrive(argv, folder.path());
}
