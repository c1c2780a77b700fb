// SPDX-License-Identifier: Apache-2.0
// Any bytes as the release service's answer: refused with a sentence, or a release with a tag, of which the
// browser is only ever sent to an https address.
#include <cstdlib>

#include "core/update/Release.h"
#include "core/update/Version.h"

using namespace ambrel;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const Result<Release> release =
      parseRelease(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
  if (!release) return release.error().isEmpty() ? (std::abort(), 0) : 0;
  if (release.value().tag.isEmpty()) std::abort();
  const QUrl address = downloadAddress(release.value());
  if (!address.isEmpty() && address.scheme() != QLatin1String("https")) std::abort();
  const int order = compare_versions(release.value().tag, QStringLiteral("7.04"));
  if (compare_versions(QStringLiteral("7.04"), release.value().tag) != -order) std::abort();
  return 0;
}
