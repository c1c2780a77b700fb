// SPDX-License-Identifier: Apache-2.0
// Photos of many people on disk: counting those of 10,000 rows beside find(1), again after one folder has
// changed, and moving 5,000 photos into another folder. Ends with 1 when a goal is missed, with 2 when a
// count is wrong or a photo is not where it belongs.
#include <QDir>
#include <QProcess>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "core/base/PosixFiles.h"
#include "core/capture/FolderMoves.h"
#include "core/capture/FolderScan.h"
#include "support/Benchmark.h"
#include "support/Turns.h"

namespace ambrel::bench {
namespace {

constexpr int kPeople = 10'000;
constexpr int kPhotosEach = 10;
constexpr int kRounds = 9;
constexpr int kMerged = 5'000;
constexpr double kTimesFasterThanFind = 2;
constexpr double kMostOfWholeCount = 0.5;
constexpr double kPhotosPerSecond = 1500;

using std::chrono::system_clock;

std::string person(int number) {
  return "Person Number " + std::to_string(number);
}

void makeFile(const std::string& path) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0644);
  require(file >= 0 && ::write(file, path.data(), path.size()) > 0 && ::close(file) == 0, "no photo");
}

void makeFolder(const std::string& path) {
  require(::mkdir(path.c_str(), 0755) == 0, "no folder");
}

void makePhotos(const std::string& folder, const std::string& prefix, int count) {
  makeFolder(folder);
  const std::string start = folder + '/' + prefix + '_';
  for (int i = 1; i <= count; ++i)
    makeFile(start + std::to_string(i) + ".JPG");
}

using Counts = std::vector<std::int64_t>;

Counts ofAllPeople(FolderScan& scan, const std::string& target, system_clock::time_point now) {
  const PhotoCounts counts = scan.scan(target, now);
  Counts found;
  for (int i = 0; i < kPeople; ++i)
    found.push_back(counts.ofName(person(i)));
  return found;
}

qint64 photosThatFindLists(const std::string& target) {
  QProcess find;
  find.start(QStringLiteral("find"), {QString::fromStdString(target), QStringLiteral("-mindepth"),
                                      QStringLiteral("2"), QStringLiteral("-maxdepth"), QStringLiteral("2"),
                                      QStringLiteral("-name"), QStringLiteral("*.JPG")});
  require(find.waitForFinished(-1) && find.exitCode() == 0, "find does not work");
  return find.readAllStandardOutput().count('\n');
}

void measureCounting(const std::string& target, Goals& goals) {
  for (int i = 0; i < kPeople; ++i)
    makePhotos(target + '/' + person(i), person(i), kPhotosEach);

  const auto taken = inTurns(
      kRounds, {[&] {
                  FolderScan fresh;
                  Counts counts;
                  const double ours =
                      millisecondsOf([&] { counts = ofAllPeople(fresh, target, system_clock::now()); });
                  require(counts == Counts(kPeople, kPhotosEach), "the counts are wrong");
                  return ours;
                },
                [&] {
                  qint64 listed = 0;
                  const double find = millisecondsOf([&] { listed = photosThatFindLists(target); });
                  require(listed == kPeople * kPhotosEach, "find lists other photos");
                  return find;
                }});
  goals.atMostTimes("count 10,000 folders for 10,000 rows", taken[0], "find", taken[1],
                    1 / kTimesFasterThanFind);

  // Seen from later, when the folders' clock has long moved on.
  const auto later = system_clock::now() + std::chrono::hours(1);
  FolderScan scan;
  ofAllPeople(scan, target, later);
  require(scan.foldersRead() == kPeople, "not every folder was read");
  std::vector<double> again;
  for (int round = 0; round < kRounds; ++round) {
    makeFile(target + '/' + person(round) + "/another.jpg");
    Counts counts;
    again.push_back(millisecondsOf([&] { counts = ofAllPeople(scan, target, later); }));
    require(scan.foldersRead() == 1, "more than the changed folder was read");
    Counts expected(kPeople, kPhotosEach);
    std::fill_n(expected.begin(), round + 1, kPhotosEach + 1);
    require(counts == expected, "the counts are wrong after a change");
  }
  goals.atMostTimes("again after one folder has changed", again, "whole count", taken[0], kMostOfWholeCount);
}

void measureMerge(const std::string& target, Goals& goals) {
  PosixFiles files;
  std::vector<double> times;
  for (int round = 0; round < 3; ++round) {
    const std::string source = target + "/From " + std::to_string(round);
    const std::string name = "Into " + std::to_string(round);
    makePhotos(source, "photo", kMerged);
    std::string into = target + '/';
    into += name;
    makePhotos(into, name, 10);
    RenameOutcome outcome;
    const RenameWatch watch{.stop = [] { return false; }};
    times.push_back(millisecondsOf([&] { outcome = renameFolderFSAt(files, source, name, watch); }));
    require(outcome.photos == kMerged && outcome.message.isEmpty(), "not all photos were moved");
    require(imageCountInFolder(into) == kMerged + 10, "photos are missing");
    require(::access(source.c_str(), F_OK) != 0, "the empty folder is still there");
  }
  goals.atMost("merge 5,000 photos (>= 1,500/s)", times, kMerged * 1000 / kPhotosPerSecond);
}

void measure(Goals& goals, const QString& folder) {
  const std::string people = folder.toStdString() + "/people";
  const std::string merges = folder.toStdString() + "/merges";
  makeFolder(people);
  makeFolder(merges);
  measureCounting(people, goals);
  measureMerge(merges, goals);
}

}  // namespace
}  // namespace ambrel::bench

int main(int argc, char** argv) {
  return ambrel::bench::runBenchmark(argc, argv, ambrel::bench::measure);
}
