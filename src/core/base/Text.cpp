// SPDX-License-Identifier: Apache-2.0
#include "core/base/Text.h"

#include <QStringDecoder>

namespace ambrel {

QString NSTrim(const QString& text) {
  return text.trimmed();
}

std::string ns_to_std(const QString& text) {
  return text.toStdString();
}

QString std_to_ns(std::string_view bytes) {
  // A byte-order mark is a character like any other: these are names and lines, not files.
  QStringDecoder decoder(QStringDecoder::Utf8,
                         QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
  const QString text = decoder.decode(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
  return decoder.hasError() ? QString() : text;
}

QString pluralEnding(qint64 count) {
  return count == 1 ? QString() : QStringLiteral("s");
}

}  // namespace ambrel
