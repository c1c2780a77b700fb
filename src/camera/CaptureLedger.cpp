// SPDX-License-Identifier: Apache-2.0
#include "camera/CaptureLedger.h"

#include <algorithm>
#include <utility>

#include "camera/PhotoFormat.h"

namespace ambrel::camera {
namespace {

std::string stemOf(const CameraFile& file) {
  return file.folder + "/" + file.name.substr(0, file.name.rfind('.'));
}

}  // namespace

bool CaptureLedger::announced(const CameraFile& file) {
  if (file.inHostMemory()) return true;
  const auto [met, isNew] = _known[file.folder].try_emplace(file.name, Met::Announced);
  return isNew || std::exchange(met->second, Met::Announced) == Met::Announced;
}

CaptureLedger::Exposure& CaptureLedger::exposureOf(const CameraFile& file) {
  const std::string stem = file.inHostMemory() ? kInHostMemory : stemOf(file);
  const auto found = std::find_if(_exposures.begin(), _exposures.end(),
                                  [&](const Exposure& exposure) { return exposure.stem == stem; });
  if (found != _exposures.end()) return *found;
  if (_exposures.size() == kMostOpenExposures) _exposures.pop_front();
  return _exposures.emplace_back(Exposure{stem});
}

// On a card both files of a pair share their number. In host memory they do not, and only their kinds and
// their being neighbours tell.
bool CaptureLedger::beginsExposure(const CameraFile& file) {
  Exposure& exposure = exposureOf(file);
  const bool raw = isRawName(file.name);
  const bool continues =
      raw ? exposure.hasFinished && !exposure.hasRaw : exposure.hasRaw && !exposure.hasFinished;
  if (!continues) exposure.hasRaw = exposure.hasFinished = false;
  (raw ? exposure.hasRaw : exposure.hasFinished) = true;
  return !continues;
}

void CaptureLedger::captureComplete() {
  std::erase_if(_exposures, [](const Exposure& exposure) { return exposure.stem == kInHostMemory; });
}

void CaptureLedger::startFrom(const std::vector<CameraFile>& listing) {
  auto before = std::exchange(_known, {});
  for (const CameraFile& file : listing) {
    auto& names = before[file.folder];
    const auto met = names.find(file.name);
    _known[file.folder].emplace(file.name, met == names.end() ? Met::Announced : met->second);
  }
}

std::vector<CameraFile> CaptureLedger::unannounced(const std::vector<CameraFile>& listing) {
  std::vector<CameraFile> found;
  for (const CameraFile& file : listing) {
    if (isPhotoName(file.name) && _known[file.folder].try_emplace(file.name, Met::OnCard).second) {
      found.push_back(file);
    }
  }
  return found;
}

void CaptureLedger::forgetCard() {
  _known.clear();
  _exposures.clear();
}

}  // namespace ambrel::camera
