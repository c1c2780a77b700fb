// SPDX-License-Identifier: Apache-2.0
#include "camera/CaptureLedger.h"

#include "camera/PhotoFormat.h"

namespace ambrel::camera {
namespace {

// The size tells a number that was used again from a photo that was met before.
std::string identity(const CameraFile& file) {
  return file.folder + "/" + file.name + ":" + std::to_string(file.size);
}

std::string stemOf(const CameraFile& file) {
  return file.folder + "/" + file.name.substr(0, file.name.rfind('.'));
}

}  // namespace

bool CaptureLedger::announced(const CameraFile& file) {
  if (file.inHostMemory()) return true;
  const std::string id = identity(file);
  _known.insert(id);
  return _metOnCard.erase(id) == 0;
}

// On a card both files of a pair share their number. In host memory they do not, and only their kinds and
// their being neighbours tell.
bool CaptureLedger::beginsExposure(const CameraFile& file) {
  Exposure& exposure = _exposures[file.inHostMemory() ? kInHostMemory : stemOf(file)];
  const bool raw = isRawName(file.name);
  const bool continues =
      raw ? exposure.hasFinished && !exposure.hasRaw : exposure.hasRaw && !exposure.hasFinished;
  if (!continues) exposure = {};
  (raw ? exposure.hasRaw : exposure.hasFinished) = true;
  return !continues;
}

void CaptureLedger::startFrom(const std::vector<CameraFile>& listing) {
  for (const CameraFile& file : listing)
    _known.insert(identity(file));
}

std::vector<CameraFile> CaptureLedger::unannounced(const std::vector<CameraFile>& listing) {
  std::vector<CameraFile> found;
  for (const CameraFile& file : listing) {
    if (!isPhotoName(file.name) || !_known.insert(identity(file)).second) continue;
    _metOnCard.insert(identity(file));
    found.push_back(file);
  }
  return found;
}

void CaptureLedger::forgetCard() {
  _known.clear();
  _metOnCard.clear();
  _exposures.clear();
}

}  // namespace ambrel::camera
