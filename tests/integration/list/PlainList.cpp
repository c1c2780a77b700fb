// SPDX-License-Identifier: Apache-2.0
#include "integration/list/PlainList.h"

#include <algorithm>
#include <sstream>

#include "core/base/Text.h"

namespace ambrel {
namespace {

std::vector<std::string> fieldsOf(const std::string& line) {
  std::vector<std::string> fields(1);
  bool quoted = false;
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (line[i] == '"' && quoted && line.substr(i + 1, 1) == "\"") {
      fields.back() += line[i++];
    } else if (line[i] == '"') {
      quoted = !quoted;
    } else if (line[i] == ',' && !quoted) {
      fields.emplace_back();
    } else {
      fields.back() += line[i];
    }
  }
  return fields;
}

}  // namespace

std::string cellOf(const Row& row, std::size_t index, const char* missing) {
  return index < row.size() ? row[index] : missing;
}

std::string quotedCell(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string written = "\"";
  for (const char c : text)
    written += c == '"' ? std::string("\"\"") : std::string(1, c);
  return written + '"';
}

qint64 PlainList::captureRow() const {
  return tableSelection.empty() ? selected : shown[static_cast<std::size_t>(tableSelection.back())];
}

void PlainList::refilter() {
  shown.clear();
  for (qint64 index = 0; index < count(); ++index)
    if (isShown(index)) shown.push_back(index);
  if (sort != 0)
    std::stable_sort(shown.begin(), shown.end(), [this](qint64 a, qint64 b) { return before(a, b); });
  const auto found = std::find(shown.begin(), shown.end(), selected);
  tableSelection.clear();
  if (found != shown.end()) tableSelection.push_back(found - shown.begin());
}

void PlainList::select(qint64 index) {
  selected = contains(index) ? index : -1;
  refilter();
}

void PlainList::setCell(qint64 index, std::size_t column, const std::string& value) {
  if (row(index).size() <= column) row(index).resize(column + 1);
  row(index)[column] = value;
}

void PlainList::photographed(qint64 index) {
  if (!contains(index)) return;
  setCell(index, 2, std::to_string(captured(index) + 1));
  stored = true;
  refilter();
}

void PlainList::rowsEdited(qint64 index) {
  search.clear();
  stored = true;
  select(std::min(index, count() - 1));
}

std::string PlainList::storeText() const {
  std::string text = "File Name,Notes,Captured,Marker";
  for (const Row& each : rows)
    text += '\n' + quotedCell(cellOf(each, 0)) + ',' + quotedCell(cellOf(each, 1)) + ',' +
            quotedCell(cellOf(each, 2, "0")) + ',' + quotedCell(cellOf(each, 3));
  return text;
}

PlainList::Rows PlainList::afterReload() const {
  Rows loaded;
  std::istringstream lines(storeText());
  std::string line;
  std::getline(lines, line);  // the header
  while (std::getline(lines, line)) {
    if (line.ends_with('\r')) line.pop_back();
    Row fields = fieldsOf(line);
    if (fields[0].empty()) continue;
    fields.resize(4);
    if (fields[2].empty()) fields[2] = "0";
    loaded.push_back(fields);
  }
  return loaded;
}

bool PlainList::isShown(qint64 index) const {
  const bool hasPhotos = captured(index) >= 1;
  if ((filter == 1 && !hasPhotos) || (filter == 2 && hasPhotos)) return false;
  QString haystack = std_to_ns(cellOf(row(index), 0));
  if (row(index).size() >= 2) haystack += QLatin1Char(' ') + std_to_ns(row(index)[1]);
  return haystack.toLower().contains(search.trimmed().toLower());
}

bool PlainList::before(qint64 a, qint64 b) const {
  const int order = _collator.compare(std_to_ns(cellOf(row(a), 0)), std_to_ns(cellOf(row(b), 0)));
  return sort == 1 ? order < 0 : order > 0;
}

}  // namespace ambrel
