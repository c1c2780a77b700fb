// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

// The one CSV dialect of the list store, of import and of export. Bytes are never transcoded: cells are
// whatever the file holds, UTF-8 by convention.
namespace ambrel {

// Cuts the first line off `bytes` and returns it without its LF and without one CR before that. A quoted cell
// does not span lines. `bytes` must not be empty.
std::string_view take_csv_line(std::string_view& bytes);

// The fields of one line. Always at least one, empty fields included; an unterminated quote runs to the end.
std::vector<std::string> parse_csv_line(std::string_view line);

// The first field of a line, without reading the others.
std::string parse_first_csv_field(std::string_view line);

// The written form of a cell: in quotes when it holds a comma, a quote, a CR or an LF, else as it is.
std::string csv_escape_cell(std::string_view cell);

// Most bytes that the written form of a cell can take.
constexpr std::size_t csv_escaped_limit(std::string_view cell) {
  return 2 * cell.size() + 2;
}

// Writes the same form to `out`, which has room for csv_escaped_limit bytes; returns the end of what it
// wrote.
char* write_csv_cell(char* out, std::string_view cell);

}  // namespace ambrel
