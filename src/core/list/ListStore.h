// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "core/base/Files.h"
#include "core/base/Locations.h"
#include "core/list/NameGrid.h"

namespace ambrel {

// The private file that mirrors the list between launches. Written whole at once on every change; the flush
// to the disk runs behind, on a thread of the store's own.
class ListStore {
 public:
  ListStore(Files& files, const Locations& locations);
  ~ListStore();

  QString gridStorePath() const;
  bool exists() const;
  bool save(const std::vector<Row>& rows);
  // None when there is no store file; an unreadable one gives no rows.
  std::optional<std::vector<Row>> load() const;
  void remove();

 private:
  Files& _files;
  Locations _locations;
};

}  // namespace ambrel
