// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>

#include "faults/FlushLint.h"
#include "support/SimulatedCamera.h"
#include "support/TemporaryFolder.h"
#include "support/WorkerProcess.h"

namespace ambrel::faults {
namespace {

using Kind = FileEvent::Kind;
using Events = std::vector<FileEvent>;
using Sentences = std::vector<std::string>;

const FileEvent kWrite{Kind::Write, "/a/.part"};
const FileEvent kFlush{Kind::Flush, "/a/.part"};
const FileEvent kRename{Kind::Rename, "/a/.part", "/a/photo"};
const FileEvent kFlushFolder{Kind::Flush, "/a"};
const FileEvent kDone{Kind::Done, "/a/photo"};

TEST(FlushLint, IsContentWithBytesBeforeTheNameAndTheNameBeforeTheUse) {
  const LintResult result = lintFlushes({kWrite, kFlush, kRename, kFlushFolder, kDone});
  EXPECT_EQ(result.wrong, Sentences());
  EXPECT_EQ(result.renames, 1);
  EXPECT_EQ(result.flushes, 2);
  EXPECT_EQ(result.relied, 1);
}

TEST(FlushLint, FindsEveryFlushThatIsMissingOrTooEarly) {
  const std::string early = "/a/photo takes its name before its bytes are flushed";
  const std::string bytes = "/a/photo is relied on before its bytes are flushed";
  const std::string name = "/a/photo is relied on before its name is flushed";
  EXPECT_EQ(lintFlushes({kWrite, kRename, kFlushFolder, kDone}).wrong, (Sentences{early, bytes}));
  EXPECT_EQ(lintFlushes({kWrite, kFlush, kRename, kDone}).wrong, Sentences{name});
  EXPECT_EQ(lintFlushes({kWrite, kFlush, kWrite, kRename, kFlushFolder}).wrong, Sentences{early});
  EXPECT_EQ(lintFlushes({kWrite, kFlush, kFlushFolder, kRename, kDone}).wrong, Sentences{name});
  EXPECT_EQ(lintFlushes({kWrite, kFlush, kRename, {Kind::Flush, "/"}, kDone}).wrong, Sentences{name});
}

TEST(FlushLint, FindsBytesWrittenUnderTheFinalName) {
  EXPECT_EQ(lintFlushes({kWrite, kFlush, kRename, kFlushFolder, {Kind::Write, "/a/photo"}}).wrong,
            Sentences{"/a/photo is written under its final name"});
}

TEST(FlushLint, LetsANameBeFlushedBehindButNotNever) {
  EXPECT_EQ(lintFlushes({kWrite, kRename, {Kind::Flush, "/a/photo"}, kFlushFolder}, "photo").wrong,
            Sentences());
  EXPECT_EQ(lintFlushes({kWrite, kRename, kFlushFolder}, "photo").wrong,
            Sentences{"/a/photo is never flushed"});
  EXPECT_EQ(lintFlushes({kWrite, kRename, {Kind::Flush, "/a/photo"}}, "photo").wrong,
            Sentences{"/a/photo has a name that is never flushed"});
}

TEST(FlushLint, SaysNothingOfFilesThatSomebodyElseWrote) {
  EXPECT_EQ(lintFlushes({kRename, kDone}).wrong, Sentences());
}

TEST(FlushLint, ReadsATraceWithInterruptedAndFailedCalls) {
  const Events events = eventsOfTrace(
      "11 write(5</a/.part>, \"\\377\\330\"..., 4096) = 4096\n"
      "11 fsync(5</a/.part> <unfinished ...>\n"
      "12 write(6</b>, \"x\", 1) = -1 ENOSPC (No space left on device)\n"
      "11 <... fsync resumed>)         = 0\n"
      "11 renameat2(AT_FDCWD</>, \"/a/.part\", AT_FDCWD</>, \"/a/photo\", RENAME_NOREPLACE) = 0\n"
      "11 fsync(7</a>) = 0\n"
      "11 write(1<pipe:[99]>, \"DOWNLOADED|/a/photo\\n\", 20) = 20\n");
  ASSERT_EQ(events.size(), 5u);
  EXPECT_EQ(events[1].kind, Kind::Flush);
  EXPECT_EQ(events[2].to, "/a/photo");
  EXPECT_EQ(events[4].kind, Kind::Done);
  EXPECT_EQ(events[4].path, "/a/photo");
  EXPECT_EQ(lintFlushes(events).wrong, Sentences());
}

std::string textOf(const std::string& path) {
  std::ifstream file(path);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

TEST(CameraWorker, ReportsAPhotoOnlyOnceBytesAndNameAreOnTheDisk) {
  if (std::system("strace -o /dev/null true 2>/dev/null") != 0) {
    GTEST_SKIP() << "SKIPPED: no program may be traced here";
  }
  constexpr int kShots = 6;
  const std::string calls =
      "trace=write,pwrite64,writev,pwritev,ftruncate,fsync,fdatasync,rename,renameat,renameat2,link,linkat";
  const test::TemporaryFolder folder;
  const std::string log = folder.path() + "/trace";
  const std::string photos = folder.path() + "/photos";
  std::filesystem::create_directory(photos);
  SimulatedCamera camera;
  {
    WorkerProcess worker(WorkerProcess::Launch{photos,
                                               camera.gphotoPort(),
                                               "both",
                                               {"strace", "-f", "-y", "-s", "4096", "-o", log, "-e", calls},
                                               {},
                                               std::chrono::seconds(60)});
    worker.connect();
    worker.watch();
    camera.command("shoot n=" + std::to_string(kShots) + " size=200000");
    for (int i = 0; i < kShots; ++i)
      worker.waitFor("DOWNLOADED|");
    worker.send("QUIT");
    worker.waitForExit();
  }
  Events events = eventsOfTrace(textOf(log));
  std::erase_if(events, [&photos](const FileEvent& event) { return !event.path.starts_with(photos); });
  const LintResult result = lintFlushes(events);
  EXPECT_EQ(result.wrong, Sentences());
  EXPECT_EQ(result.relied, kShots);
  EXPECT_GE(result.renames, kShots);
  EXPECT_GE(result.flushes, 2 * kShots);
}

}  // namespace
}  // namespace ambrel::faults
