// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <vector>

#include "simulator/Bytes.h"
#include "simulator/PtpCodes.h"

namespace ambrel::simulator {

// One record of an event dataset, its size and type taken off.
struct Record {
  RecordType type{};
  Bytes body;

  std::uint32_t number(std::size_t index = 0) const;
};

// The records of an event dataset; nothing if it is malformed or not closed by its end record.
std::optional<std::vector<Record>> read_records(ByteView dataset);
std::vector<Record> records_of(RecordType type, const std::vector<Record>& records);
// The value that the last record about the property tells, if there is one.
std::optional<std::uint32_t> last_value(Property property, const std::vector<Record>& records);

}  // namespace ambrel::simulator
