// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "core/list/NameGrid.h"

// Reading a list from a CSV file. The first line is a header, skipped whatever it holds, and a row without a
// name is dropped. None when the file cannot be read to its end.
namespace ambrel {

// Rows of exactly four cells, as the list store holds them.
std::optional<std::vector<Row>> readGrid(const QString& path);

// The first column of a foreign file, as rows of name and empty note. Beside the rows, memory holds one line
// of the file.
std::optional<std::vector<Row>> readFirstColumn(const QString& path);

}  // namespace ambrel
