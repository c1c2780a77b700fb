// SPDX-License-Identifier: Apache-2.0
#include "core/list/GridText.h"

#include <algorithm>
#include <string_view>

#include "core/list/Csv.h"

namespace ambrel {

namespace {

constexpr std::string_view kStoreHeader = "File Name,Notes,Captured,Marker";
constexpr std::string_view kExportHeader = "File Name,Notes";
constexpr qsizetype kUsualRow = 48;

std::string_view cellOrDefault(const Row& row, std::size_t cell, std::string_view missing = {}) {
  return cell < row.size() ? std::string_view(row[cell]) : missing;
}

// Bytes under construction, with room made once per row.
class Output {
 public:
  explicit Output(qsizetype expected) : _bytes(expected, Qt::Uninitialized), _end(_bytes.data()) {}

  qsizetype size() const { return _end - _bytes.constData(); }
  void makeRoom(std::size_t count) {
    const qsizetype used = size();
    const qsizetype needed = used + static_cast<qsizetype>(count);
    if (needed <= _bytes.size()) return;
    _bytes.resize(std::max(needed, _bytes.size() * 2));
    _end = _bytes.data() + used;
  }
  void put(char c) { *_end++ = c; }
  void putCell(std::string_view cell) { _end = write_csv_cell(_end, cell); }
  void putBytes(std::string_view bytes) { _end = std::copy(bytes.begin(), bytes.end(), _end); }

  QByteArray take() {
    _bytes.truncate(size());
    return std::move(_bytes);
  }

 private:
  QByteArray _bytes;
  char* _end;
};

Output outputFor(qsizetype rows, GridColumns columns) {
  const std::string_view header = columns == GridColumns::All ? kStoreHeader : kExportHeader;
  Output out(static_cast<qsizetype>(header.size()) + rows * kUsualRow);
  out.putBytes(header);
  return out;
}

// The line of a row, after the LF that ends the line before it.
void writeRow(Output& out, const Row& row, GridColumns columns) {
  const std::string_view name = cellOrDefault(row, 0);
  const std::string_view note = cellOrDefault(row, 1);
  const std::string_view captured = cellOrDefault(row, 2, "0");
  const std::string_view marker = cellOrDefault(row, 3);
  constexpr std::size_t kSeparators = 4;
  out.makeRoom(kSeparators + csv_escaped_limit(name) + csv_escaped_limit(note) + csv_escaped_limit(captured) +
               csv_escaped_limit(marker));
  out.put('\n');
  out.putCell(name);
  out.put(',');
  out.putCell(note);
  if (columns == GridColumns::NamesAndNotes) return;
  out.put(',');
  out.putCell(captured);
  out.put(',');
  out.putCell(marker);
}

}  // namespace

QByteArray writeGrid(const std::vector<Row>& rows, GridColumns columns) {
  Output out = outputFor(static_cast<qsizetype>(rows.size()), columns);
  for (const Row& row : rows)
    writeRow(out, row, columns);
  return out.take();
}

void StoreText::update(const NameGrid& grid) {
  const GridChanges changes = grid.changesSince(_seenRevision);
  _seenRevision = grid.revision();
  if (!changes.everything) {
    for (const std::int64_t row : changes.rows) {
      Output out(kUsualRow);
      writeRow(out, grid.rows()[static_cast<std::size_t>(row)], GridColumns::All);
      _text.replace(static_cast<std::size_t>(row), out.take());
    }
    return;
  }
  Output out = outputFor(static_cast<qsizetype>(grid.rowCount()), GridColumns::All);
  std::vector<qsizetype> starts = {out.size()};
  starts.reserve(grid.rows().size() + 1);
  for (const Row& row : grid.rows()) {
    writeRow(out, row, GridColumns::All);
    starts.push_back(out.size());
  }
  _text.assign(out.take(), std::move(starts));
}

}  // namespace ambrel
