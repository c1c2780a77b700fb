// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "camera/Camera.h"

namespace ambrel::camera {

// Accounts for every exposure of a session: which files were announced, which a look at the card has shown,
// and which belong to one press of the shutter. A photo counts once, whichever way it was found.
class CaptureLedger {
 public:
  // The camera announced a file. False when a look at the card has shown it before. The camera announces each
  // file once; the same name again is another photo.
  bool announced(const CameraFile& file);
  // Whether the file is the first one of a press of the shutter; to be asked once for each.
  bool beginsExposure(const CameraFile& file);
  // The exposure that the last file belongs to is over.
  void captureComplete();

  // What is on the card now was taken before and is nobody's business; a name that has gone from it may come
  // again.
  void startFrom(const std::vector<CameraFile>& listing);
  // The photos of a listing that are new and that nothing announced, in the listing's order. They count as
  // met from then on.
  std::vector<CameraFile> unannounced(const std::vector<CameraFile>& listing);
  // Another card: its photos may bear the names of those met before.
  void forgetCard();

 private:
  struct Exposure {
    std::string stem;  // folder and name without extension, or kInHostMemory
    bool hasRaw = false;
    bool hasFinished = false;
  };
  enum class Met { Announced, OnCard };  // OnCard: by a look at it, and not announced since
  static constexpr const char* kInHostMemory = "";
  // Of a burst of pairs a camera may announce one kind first; no burst is longer than this.
  static constexpr std::size_t kMostOpenExposures = 256;

  Exposure& exposureOf(const CameraFile& file);

  // By folder and name: less than a hundred bytes for each photo of a session.
  std::map<std::string, std::map<std::string, Met>> _known;
  std::deque<Exposure> _exposures;  // the latest
};

}  // namespace ambrel::camera
