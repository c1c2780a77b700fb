// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>
#include <vector>

#include "core/list/NameGrid.h"

// The list as a CSV file. The first line of a file is a header: written for people, skipped on reading
// whatever it holds.
namespace ambrel {

enum class GridColumns {
  All,           // "File Name,Notes,Captured,Marker": the list store
  NamesAndNotes  // "File Name,Notes": what the operator exports
};

// The header and one line per row, LF between them, none after the last.
QByteArray writeGrid(const std::vector<Row>& rows, GridColumns columns);

// Rows of exactly four cells; a row without a name is dropped. None when the file cannot be read to its end.
std::optional<std::vector<Row>> readGrid(const QString& path);

// The first column of a foreign file, as rows of name and empty note; a row without a name is dropped. None
// when the file cannot be read to its end. Beside the rows, memory holds one line of the file.
std::optional<std::vector<Row>> readFirstColumn(const QString& path);

}  // namespace ambrel
