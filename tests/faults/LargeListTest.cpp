// SPDX-License-Identifier: Apache-2.0
// Lists that no spreadsheet would write. AMBREL_LARGE_LISTS in the environment asks for the largest ones,
// which take gigabytes of disk and minutes.
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

#include "core/list/GridFile.h"

namespace ambrel {
namespace {

constexpr qint64 kGigabyte = qint64{1} << 30;

class LargeList : public ::testing::Test {
 protected:
  QString path() const { return _folder.filePath("list.csv"); }

  void write(const QByteArray& bytes) const {
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
  }

  static qint64 peakMegabytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
      if (line.starts_with("VmHWM:")) return std::atoll(line.c_str() + 6) / 1024;
    return 0;
  }

  // Imports and says what it took, on record and for the one who watches.
  std::size_t import() const {
    QElapsedTimer time;
    time.start();
    const auto rows = readFirstColumn(path());
    RecordProperty("milliseconds", std::to_string(time.elapsed()));
    RecordProperty("peak_megabytes", std::to_string(peakMegabytes()));
    std::printf("%lld ms, %lld MB at the most\n", static_cast<long long>(time.elapsed()),
                static_cast<long long>(peakMegabytes()));
    return rows ? rows->size() : std::size_t{0};
  }

  QTemporaryDir _folder;
};

TEST_F(LargeList, MayHaveTenThousandColumns) {
  QByteArray bytes("h");
  for (int row = 0; row < 100; ++row)
    bytes += "\n\"Anna\"" + QByteArray(",x").repeated(10'000);
  write(bytes);
  EXPECT_EQ(import(), 100U);
  const auto stored = readGrid(path());
  ASSERT_TRUE(stored);
  EXPECT_EQ(stored->back(), (Row{"Anna", "x", "x", "x"}));
}

TEST_F(LargeList, MayOpenAQuoteThatNobodyCloses) {
  write("h\n\"Anna,x\nBen,\"y\n" + QByteArray("Cara,\"\n").repeated(100'000));
  EXPECT_EQ(import(), 100'002U);
}

TEST_F(LargeList, MayHaveAMillionRows) {
  write("h" + QByteArray("\nSomebody's Name,3a,front row").repeated(1'000'000));
  EXPECT_EQ(import(), 1'000'000U);
}

TEST_F(LargeList, MayHaveTenMillionRows) {
  if (std::getenv("AMBREL_LARGE_LISTS") == nullptr) {
    GTEST_SKIP() << "SKIPPED: set AMBREL_LARGE_LISTS to spend 2 GB of memory on ten million rows";
  }
  write("h" + QByteArray("\nSomebody's Name,3a").repeated(10'000'000));
  EXPECT_EQ(import(), 10'000'000U);
}

TEST_F(LargeList, MayBeAGigabyte) {
  if (std::getenv("AMBREL_LARGE_LISTS") == nullptr) {
    GTEST_SKIP() << "SKIPPED: set AMBREL_LARGE_LISTS to read a gigabyte";
  }
  const QByteArray megabyte = ("\nAnna," + QByteArray(1018, 'x')).repeated(1024);
  QFile file(path());
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  for (qint64 written = 0; written < kGigabyte; written += megabyte.size())
    ASSERT_EQ(file.write(megabyte), megabyte.size());
  file.close();
  EXPECT_EQ(import(), 1024U * 1024U);
}

}  // namespace
}  // namespace ambrel
