// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace ambrel {

// The version text of a release tag: without one leading "v".
QString version_of_tag(const QString& tag);

// -1, 0 or 1 as version `a` is older than `b`, the same, or newer. Components are compared as numbers, a
// missing one is 0, and a suffix after "-" makes a version older than the same without; suffixes are not
// compared.
int compare_versions(const QString& a, const QString& b);

}  // namespace ambrel
