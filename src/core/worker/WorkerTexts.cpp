// SPDX-License-Identifier: Apache-2.0
#include "core/worker/WorkerTexts.h"

#include <array>

namespace ambrel {
namespace {

struct Translation {
  const char* part;  // lower case
  const char* shown;
};

// The first part found decides: "connected" must stay behind what it is a part of.
constexpr std::array kTranslations{
    Translation{"loading canon sdk", "Loading Canon camera SDK..."},
    Translation{"waiting for camera usb", "Looking for camera over USB..."},
    Translation{"connecting to camera", "Connecting to camera..."},
    Translation{"opening camera session", "Opening camera session..."},
    Translation{"setting save destination", "Setting camera save mode..."},
    Translation{"checking camera memory card", "Checking camera memory card..."},
    Translation{"connected", "Camera connected. Ready to start watching."},
};

}  // namespace

QString friendlyStatusForWorker(const QString& text) {
  const QString lower = text.toLower();
  for (const Translation& translation : kTranslations) {
    if (lower.contains(QLatin1String(translation.part))) return QString::fromLatin1(translation.shown);
  }
  return text;
}

}  // namespace ambrel
