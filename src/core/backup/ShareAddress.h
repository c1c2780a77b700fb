// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include "core/platform/MountTable.h"

namespace ambrel {

// Whether a volume is a network share that is known by "//server/share".
bool isNetworkShare(const MountedVolume& volume);
// Where a network share can be mounted from: scheme, colon, mount source.
QString shareUrl(const MountedVolume& volume);
// The server's name or address, without user and port; may be empty.
QString shareHost(const QString& mountSource);
// Every byte of the UTF-8 form as %XX but letters, digits and -._~:/@
QString percentEncodedShare(const QString& url);

}  // namespace ambrel
