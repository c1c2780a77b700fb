// SPDX-License-Identifier: Apache-2.0
// Any bytes are a list store. The list that they hold is written and read back as it was, stays so through
// edits taken from the same bytes, and is searched as if row by row.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

#include "core/base/Text.h"
#include "core/list/GridFile.h"
#include "core/list/GridText.h"
#include "core/list/SearchText.h"

namespace {

using ambrel::Cell;
using ambrel::NameGrid;
using ambrel::Row;

void require(bool held) {
  if (!held) std::abort();
}

// A file in memory with these bytes.
QString fileWith(std::string_view bytes) {
  static const int kFile = memfd_create("store", MFD_CLOEXEC);
  require(ftruncate(kFile, 0) == 0);
  require(pwrite(kFile, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()));
  return QStringLiteral("/proc/self/fd/%1").arg(kFile);
}

std::string_view view(const QByteArray& bytes) {
  return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

std::vector<Row> readWhole(std::string_view bytes) {
  const auto rows = ambrel::readGrid(fileWith(bytes));
  const auto names = ambrel::readFirstColumn(fileWith(bytes));
  require(rows && names && rows->size() == names->size());
  for (std::size_t i = 0; i < rows->size(); ++i) {
    require((*rows)[i].size() == 4 && !(*rows)[i][0].empty() && !(*rows)[i][2].empty());
    require((*names)[i].size() == 2 && (*names)[i][0] == (*rows)[i][0]);
  }
  return *rows;
}

// One change per four bytes: what, where, and a cell of the bytes that follow.
void edit(NameGrid& grid, std::string_view change) {
  const auto byte = [change](std::size_t index) { return static_cast<unsigned char>(change[index]); };
  const std::int64_t row = byte(1) % (grid.rowCount() + 1);
  std::string value(change.substr(2, 2));
  switch (byte(0) % 6) {
    case 0:
      return grid.insert(row, {value, value});
    case 1:
      return grid.remove(row);
    case 2:
      return grid.append({value});
    case 3:
      return grid.setCaptured(byte(2), row);
    default:
      return grid.setBytes(row, byte(0) % 2 == 0 ? Cell::Name : Cell::Note, value);
  }
}

void requireFound(const NameGrid& grid, const ambrel::SearchText& text, const QString& needle) {
  if (needle.isEmpty()) return;
  std::vector<qint64> expected;
  for (std::int64_t row = 0; row < grid.rowCount(); ++row) {
    QString haystack = grid.text(row, Cell::Name);
    if (grid.rows()[static_cast<std::size_t>(row)].size() > 1)
      haystack += QLatin1Char(' ') + grid.text(row, Cell::Note);
    if (haystack.toLower().contains(needle)) expected.push_back(row);
  }
  std::vector<qint64> found;
  text.findRows(needle, found);
  require(found == expected);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const std::vector<Row> rows = readWhole(bytes);
  require(readWhole(view(ambrel::writeGrid(rows, ambrel::GridColumns::All))) == rows);

  NameGrid grid;
  grid.replaceAll(rows);
  ambrel::StoreText store;
  ambrel::SearchText search;
  constexpr std::size_t kMostEdits = 40;
  for (std::size_t i = 0; i < kMostEdits && i * 4 + 4 <= size; ++i) {
    edit(grid, bytes.substr(i * 4, 4));
    if (i % 3 == 0) continue;
    store.update(grid);
    search.update(grid);
    require(store.bytes() == ambrel::writeGrid(grid.rows(), ambrel::GridColumns::All));
    requireFound(grid, search, ambrel::std_to_ns(bytes.substr(i, 1 + i % 3)).toLower());
  }
  return 0;
}
