// SPDX-License-Identifier: Apache-2.0
#include "Records.h"

#include <algorithm>
#include <iterator>

namespace ambrel::simulator {

std::uint32_t Record::number(std::size_t index) const {
  return ByteReader(ByteView(body).subspan(4 * index)).u32();
}

std::optional<std::vector<Record>> read_records(ByteView dataset) {
  std::vector<Record> records;
  for (;;) {
    ByteReader reader(dataset);
    const std::uint32_t size = reader.u32();
    const std::uint32_t type = reader.u32();
    if (!reader.ok() || size < 8 || size > dataset.size()) return std::nullopt;
    if (type == 0) return size == dataset.size() ? std::optional(records) : std::nullopt;
    const ByteView body = dataset.subspan(8, size - 8);
    records.push_back({static_cast<RecordType>(type), Bytes(body.begin(), body.end())});
    dataset = dataset.subspan(size);
  }
}

std::vector<Record> records_of(RecordType type, const std::vector<Record>& records) {
  std::vector<Record> found;
  std::copy_if(records.begin(), records.end(), std::back_inserter(found),
               [&](const Record& record) { return record.type == type; });
  return found;
}

std::optional<std::uint32_t> last_value(Property property, const std::vector<Record>& records) {
  std::optional<std::uint32_t> value;
  for (const Record& record : records_of(RecordType::propertyChanged, records)) {
    if (record.number() == static_cast<std::uint32_t>(property)) value = record.number(1);
  }
  return value;
}

}  // namespace ambrel::simulator
