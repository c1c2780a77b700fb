// SPDX-License-Identifier: Apache-2.0
#include "core/list/Csv.h"

#include <algorithm>

namespace ambrel {

namespace {

// Moves the next field from the front of `rest` to the end of `field`; true when a comma ended it, so that
// another field follows.
bool take_field(std::string_view& rest, std::string& field) {
  const std::size_t comma = rest.find(',');
  const std::string_view plain = rest.substr(0, comma);
  if (plain.find('"') == std::string_view::npos) {  // as most are
    field.append(plain);
    rest.remove_prefix(comma == std::string_view::npos ? rest.size() : comma + 1);
    return comma != std::string_view::npos;
  }
  bool inQuotes = false;
  std::size_t i = 0;
  while (i < rest.size()) {
    const std::size_t run = i;
    while (i < rest.size() && rest[i] != '"' && (inQuotes || rest[i] != ','))
      ++i;
    field.append(rest, run, i - run);
    if (i == rest.size()) break;
    if (rest[i] == ',') {
      rest.remove_prefix(i + 1);
      return true;
    }
    const bool doubled = inQuotes && i + 1 < rest.size() && rest[i + 1] == '"';
    if (doubled) {
      field.push_back('"');
      ++i;
    } else {
      inQuotes = !inQuotes;
    }
    ++i;
  }
  rest = {};
  return false;
}

bool needs_quotes(std::string_view cell) {
  // Without an early exit the compiler can look at many bytes at once.
  bool special = false;
  for (const char c : cell)
    special |= (c == ',') | (c == '"') | (c == '\r') | (c == '\n');
  return special;
}

}  // namespace

std::string_view take_csv_line(std::string_view& bytes) {
  const std::size_t end = std::min(bytes.find('\n'), bytes.size());
  std::string_view line = bytes.substr(0, end);
  bytes.remove_prefix(std::min(end + 1, bytes.size()));
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

std::vector<std::string> parse_csv_line(std::string_view line) {
  std::vector<std::string> fields;
  fields.reserve(4);  // the columns of the list store
  while (take_field(line, fields.emplace_back())) {
  }
  return fields;
}

std::string parse_first_csv_field(std::string_view line) {
  std::string field;
  take_field(line, field);
  return field;
}

std::string csv_escape_cell(std::string_view cell) {
  std::string written(csv_escaped_limit(cell), '\0');
  written.resize(static_cast<std::size_t>(write_csv_cell(written.data(), cell) - written.data()));
  return written;
}

char* write_csv_cell(char* out, std::string_view cell) {
  if (!needs_quotes(cell)) return std::copy(cell.begin(), cell.end(), out);
  *out++ = '"';
  for (const char c : cell) {
    if (c == '"') *out++ = '"';
    *out++ = c;
  }
  *out++ = '"';
  return out;
}

}  // namespace ambrel
