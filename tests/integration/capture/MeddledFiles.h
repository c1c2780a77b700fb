// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "core/base/Files.h"
#include "integration/list/ListModelFixture.h"

namespace ambrel {

// The real files, with some that cannot be moved, and with a note of how the file system lists a folder just
// before its photos are given new names.
class MeddledFiles : public UnflushedFiles {
 public:
  struct Listing {
    std::string folder;
    std::vector<std::string> names;
  };

  MoveResult moveWithoutOverwriting(const QString& from, const QString& to) override;
  VolumeSpace volumeSpace(const QString& path) override;

  // Moves out of this folder are not noted.
  void setDownloads(const std::string& folder) { _downloads = folder; }
  void holdBack(std::function<bool(const std::string& path)> isHeld) { _isHeld = std::move(isHeld); }
  // Another program takes the very number that the next photo is to be filed under, just before it is; empty
  // for none.
  void takeNextNumber(const std::string& bytes);
  // What was noted, oldest first, is forgotten by taking it.
  std::deque<Listing> takeListings();

  std::atomic<bool> storageIsLow = false;

 private:
  std::string _downloads;
  std::function<bool(const std::string& path)> _isHeld;
  void outrun(const std::string& place);

  std::mutex _mutex;  // guards what follows
  std::string _rival;
  std::string _lastFolder;
  std::deque<Listing> _listings;
};

// Names of the entries of a folder, in the order of the file system.
std::vector<std::string> listingOf(const std::string& folder);

}  // namespace ambrel
