// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

#include "core/base/Result.h"

namespace ambrel {

// What the release service says of the latest release.
struct Release {
  QString tag;     // its version, perhaps with a leading "v"
  QUrl diskImage;  // empty when the release has none
  QUrl page = {};  // of the release on the web; may be empty
  bool operator==(const Release&) const = default;
};

// Reads the service's answer, a JSON object as GitHub's REST API gives it for a release. The disk image is
// the first asset whose name ends in ".dmg", in any letter case.
Result<Release> parseRelease(const QByteArray& body);

// Where the operator's browser is sent: the disk image, else the page; empty when neither is an https
// address.
QUrl downloadAddress(const Release& release);

}  // namespace ambrel
