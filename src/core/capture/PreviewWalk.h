// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QStringList>
#include <functional>
#include <string>

namespace ambrel {

// Every previewable photo below a folder, at any depth, hidden ones included, oldest content first; paths
// from `root` on. Links to folders are not followed. Empty when `stop`, asked now and then, answers yes.
QStringList previewablePhotosBelow(const std::string& root, const std::function<bool()>& stop);

}  // namespace ambrel
