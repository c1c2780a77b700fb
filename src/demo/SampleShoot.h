// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

#include "core/base/Locations.h"
#include "core/base/Result.h"

namespace ambrel {

// A data folder as an operator leaves it after setting up a shoot: a list of names, a target folder and one
// tag.
struct SampleShoot {
  Locations locations;
  QString listFile;
  QString targetDir;
};

// Twelve names in several scripts; one stands twice, one holds characters that no file name may have.
QStringList sampleNames();

// Lays the sample shoot out below an existing folder.
Result<SampleShoot> prepareSampleShoot(const QString& home);

}  // namespace ambrel
