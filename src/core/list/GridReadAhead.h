// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <future>
#include <optional>
#include <vector>

#include "core/list/NameGrid.h"

namespace ambrel {

// Reads a list store on a thread of its own before its rows are asked for. A thread that hangs on a drive is
// left behind with what it has read.
class GridReadAhead {
 public:
  void start(const QString& path);
  struct List {
    std::vector<Row> rows;
    DuplicateNames duplicates;  // duplicateNamesAmong the rows
  };
  // The list, once. None where nothing was begun, the file could not be read, or it is no longer the one that
  // was read: then it has to be read anew.
  std::optional<List> take(const QString& path);
  void forget() { _reading = {}; }

 private:
  // Differs from that of any other state of the file.
  struct State {
    std::int64_t seconds = 0;  // of the last change of its content
    std::int64_t nanoseconds = 0;
    std::int64_t size = 0;
    std::uintmax_t number = 0;  // of the file on its volume
    bool operator==(const State&) const = default;
  };
  struct Outcome {
    std::optional<State> state;
    std::optional<List> list;
  };
  static std::optional<State> stateOf(const QString& path);
  static Outcome read(const QString& path);

  std::future<Outcome> _reading;
};

}  // namespace ambrel
