// SPDX-License-Identifier: Apache-2.0
#include "core/list/GridReadAhead.h"

#include <sys/stat.h>
#include <thread>
#include <utility>

#include "core/base/FileTimes.h"
#include "core/base/PathText.h"
#include "core/list/GridFile.h"

namespace ambrel {

std::optional<GridReadAhead::State> GridReadAhead::stateOf(const QString& path) {
  struct stat status = {};
  if (::stat(ns_to_path(path).c_str(), &status) != 0) return std::nullopt;
  const timespec changed = contentTime(status);
  return State{changed.tv_sec, changed.tv_nsec, status.st_size, status.st_ino};
}

// The state from before the reading: a file that changes meanwhile does not match it later.
GridReadAhead::Outcome GridReadAhead::read(const QString& path) {
  Outcome outcome{stateOf(path), {}};
  std::optional<std::vector<Row>> rows = outcome.state ? readGrid(path) : std::nullopt;
  if (!rows) return outcome;
  DuplicateNames duplicates = duplicateNamesAmong(*rows);
  outcome.list = List{std::move(*rows), std::move(duplicates)};
  return outcome;
}

void GridReadAhead::start(const QString& path) {
  // Unlike that of std::async, the future of a task does not wait for it when it is destroyed.
  std::packaged_task<Outcome()> task([path] { return read(path); });
  _reading = task.get_future();
  std::thread(std::move(task)).detach();
}

std::optional<GridReadAhead::List> GridReadAhead::take(const QString& path) {
  if (!_reading.valid()) return std::nullopt;
  Outcome outcome = _reading.get();
  return outcome.state == stateOf(path) ? std::move(outcome.list) : std::nullopt;
}

}  // namespace ambrel
