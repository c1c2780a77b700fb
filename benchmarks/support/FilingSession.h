// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <functional>
#include <string>
#include <utility>

#include "core/base/PosixFiles.h"
#include "core/capture/CaptureSettings.h"
#include "core/capture/PhotoFiler.h"

namespace ambrel::bench {

// Files photos of Bob into a target folder, as the application does.
struct FilingSession {
  explicit FilingSession(
      const QString& target, std::function<FilingWitness()> filingWitness = [] { return FilingWitness(); })
      : witness(std::move(filingWitness)) {
    settings.setTargetDir(target);
  }

  PosixFiles files;
  CaptureSettings settings;
  std::function<FilingWitness()> witness;
  PhotoFiler filer{files,
                   {.targetDir = [this] { return settings.targetDir(); },
                    .selectedQueueItemName = [] { return std::string("Bob"); },
                    .enabledSuffixString = [] { return QString(); },
                    .captureRow = [] { return 0; },
                    .counter = [this] { return settings.counter(); },
                    .advanceCounterPast = [this](qint64 used) { settings.advanceCounterPast(used); },
                    .witness = witness}};
};

}  // namespace ambrel::bench
