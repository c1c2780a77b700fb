// SPDX-License-Identifier: Apache-2.0
#include "core/list/GridFile.h"

#include <QFile>
#include <functional>

#include "core/list/Csv.h"

namespace ambrel {

namespace {

constexpr std::size_t kStoreCells = 4;
constexpr std::size_t kReadAtOnce = std::size_t{256} * 1024;

// Every line after the first. False when the file cannot be opened, or not be read to its end.
bool forEachRowLine(const QString& path, const std::function<void(std::string_view line)>& visit) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) return false;
  std::string buffer(kReadAtOnce, '\0');
  std::size_t held = 0;  // bytes of an unfinished line at the front of the buffer
  bool header = true;
  const auto line = [&](std::string_view& bytes) {
    const std::string_view cut = take_csv_line(bytes);
    if (!std::exchange(header, false)) visit(cut);
  };
  for (;;) {
    if (buffer.size() - held < kReadAtOnce) buffer.resize(std::max(buffer.size() * 2, held + kReadAtOnce));
    const qint64 count = file.read(buffer.data() + held, static_cast<qint64>(buffer.size() - held));
    if (count < 0) return false;
    if (count == 0) break;
    const std::string_view arrived(buffer.data() + held, static_cast<std::size_t>(count));
    std::string_view bytes(buffer.data(), held + arrived.size());
    // Only the new bytes can hold a line end: an endless line is not searched again and again.
    const std::size_t lastEnd = arrived.rfind('\n');
    if (lastEnd == std::string_view::npos) {
      held = bytes.size();
      continue;
    }
    const std::size_t unfinished = arrived.size() - lastEnd - 1;
    while (bytes.size() > unfinished)
      line(bytes);
    held = std::copy(bytes.begin(), bytes.end(), buffer.begin()) - buffer.begin();
  }
  std::string_view last(buffer.data(), held);
  if (!last.empty()) line(last);
  return true;
}

}  // namespace

std::optional<std::vector<Row>> readGrid(const QString& path) {
  std::vector<Row> rows;
  const bool whole = forEachRowLine(path, [&rows](std::string_view line) {
    Row row = parse_csv_line(line);
    if (row.front().empty()) return;
    row.resize(kStoreCells);
    if (row[2].empty()) row[2].push_back('0');
    rows.push_back(std::move(row));
  });
  return whole ? std::optional(std::move(rows)) : std::nullopt;
}

std::optional<std::vector<Row>> readFirstColumn(const QString& path) {
  std::vector<Row> rows;
  const bool whole = forEachRowLine(path, [&rows](std::string_view line) {
    std::string name = parse_first_csv_field(line);
    if (name.empty()) return;
    Row row(2);
    row[0] = std::move(name);
    rows.push_back(std::move(row));
  });
  return whole ? std::optional(std::move(rows)) : std::nullopt;
}

}  // namespace ambrel
