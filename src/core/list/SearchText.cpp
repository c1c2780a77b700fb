// SPDX-License-Identifier: Apache-2.0
#include "core/list/SearchText.h"

#include <string_view>

#include "core/base/Text.h"
#include "core/list/ByteSearch.h"

namespace ambrel {

namespace {

// Ends the text of a row. No needle holds it, since it stands nowhere in UTF-8.
constexpr char kEndOfRow = '\xff';
constexpr qsizetype kUsualRow = 48;

// Name and note as one text, so that a needle can match across the blank between them.
void appendRow(QByteArray& text, const Row& row) {
  if (!row.empty()) append_lower_cased(text, row[0]);
  if (row.size() > 1) {
    text.append(' ');
    append_lower_cased(text, row[1]);
  }
  text.append(kEndOfRow);
}

}  // namespace

void SearchText::update(const NameGrid& grid) {
  const GridChanges changes = grid.changesSince(_seenRevision);
  _seenRevision = grid.revision();
  if (!changes.everything) {
    for (const std::int64_t row : changes.rows) {
      QByteArray text;
      appendRow(text, grid.rows()[static_cast<std::size_t>(row)]);
      _text.replace(static_cast<std::size_t>(row), text);
    }
    return;
  }
  QByteArray text;
  text.reserve(grid.rowCount() * kUsualRow);
  std::vector<qsizetype> starts = {0};
  starts.reserve(grid.rows().size() + 1);
  for (const Row& row : grid.rows()) {
    appendRow(text, row);
    starts.push_back(text.size());
  }
  _text.assign(std::move(text), std::move(starts));
}

void SearchText::findRows(const QString& needle, std::vector<qint64>& rows) const {
  rows.clear();
  if (!needle.isValidUtf16()) return;  // half a character: no row holds one
  const QByteArray wanted = needle.toUtf8();
  const std::string_view text(_text.bytes().constData(), static_cast<std::size_t>(_text.bytes().size()));
  const std::string_view bytes(wanted.constData(), static_cast<std::size_t>(wanted.size()));
  std::size_t row = 0;
  for (std::size_t from = 0; (from = find_bytes(text, bytes, from)) != std::string_view::npos;) {
    while (_text.endOf(row) <= static_cast<qsizetype>(from))
      ++row;
    rows.push_back(static_cast<qint64>(row));
    from = static_cast<std::size_t>(_text.endOf(row));
  }
}

}  // namespace ambrel
