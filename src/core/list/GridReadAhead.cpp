// SPDX-License-Identifier: Apache-2.0
#include "core/list/GridReadAhead.h"

#include <filesystem>
#include <sys/stat.h>
#include <thread>
#include <utility>

#include "core/base/PathText.h"
#include "core/list/GridFile.h"

namespace ambrel {

std::optional<GridReadAhead::State> GridReadAhead::stateOf(const QString& path) {
  const std::string bytes = ns_to_path(path);
  struct stat status = {};
  std::error_code error;
  const auto changed = std::filesystem::last_write_time(bytes, error);
  if (error || ::stat(bytes.c_str(), &status) != 0) return std::nullopt;
  return State{changed.time_since_epoch().count(), static_cast<std::uintmax_t>(status.st_size),
               status.st_ino};
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
