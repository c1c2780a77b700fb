// SPDX-License-Identifier: Apache-2.0
// Any bytes are a CSV file, and every cell without a line break is read back as it was written.
#include <cstdint>
#include <cstdlib>

#include "core/list/Csv.h"

namespace {

void require(bool held) {
  if (!held) std::abort();
}

void readAsFile(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t before = bytes.size();
    const std::string_view line = ambrel::take_csv_line(bytes);
    require(bytes.size() < before && line.find('\n') == std::string_view::npos);
    const std::vector<std::string> fields = ambrel::parse_csv_line(line);
    require(!fields.empty() && fields.front() == ambrel::parse_first_csv_field(line));
  }
}

// A LF stands between the cells here, so that a cell may hold any other byte.
void writeAndReadBack(std::string_view bytes) {
  std::vector<std::string> cells;
  std::string line;
  for (std::string_view rest = bytes;;) {
    const std::size_t end = rest.find('\n');
    cells.emplace_back(rest.substr(0, end));
    const std::string written = ambrel::csv_escape_cell(cells.back());
    require(written.size() <= ambrel::csv_escaped_limit(cells.back()));
    if (cells.size() > 1) line += ',';
    line += written;
    if (end == std::string_view::npos) break;
    rest.remove_prefix(end + 1);
  }
  require(ambrel::parse_csv_line(line) == cells);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  readAsFile(bytes);
  writeAndReadBack(bytes);
  return 0;
}
