// SPDX-License-Identifier: Apache-2.0
#include "core/base/Text.h"

#include <QStringDecoder>
#include <algorithm>

namespace ambrel {

namespace {

// Most names are, and then there is nothing to decode.
bool isAscii(std::string_view bytes) {
  unsigned char all = 0;
  for (const char c : bytes)
    all |= static_cast<unsigned char>(c);
  return all < 0x80;
}

char lowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c;
}

// Lower-cases letters from U+0000 to U+00FF, as western European names have them; false, with `out` written
// in part, when there is anything else.
bool lowerLatin1(std::string_view bytes, char* out) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    *out++ = lowerAscii(bytes[i]);
    if (byte < 0x80) continue;
    // C2 or C3 and a second byte, in which capital letters lack the same bit as in ASCII. D7 is no letter.
    const auto second = static_cast<unsigned char>(++i < bytes.size() ? bytes[i] : 0);
    if ((byte != 0xC2 && byte != 0xC3) || second < 0x80 || second > 0xBF) return false;
    const bool capital = byte == 0xC3 && second <= 0x9E && second != 0x97;
    *out++ = static_cast<char>(capital ? second | 0x20 : second);
  }
  return true;
}

}  // namespace

QString NSTrim(const QString& text) {
  return text.trimmed();
}

std::string ns_to_std(const QString& text) {
  return text.toStdString();
}

QString std_to_ns(std::string_view bytes) {
  if (isAscii(bytes)) return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
  // A byte-order mark is a character like any other: these are names and lines, not files.
  QStringDecoder decoder(QStringDecoder::Utf8,
                         QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
  const QString text = decoder.decode(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
  return decoder.hasError() ? QString() : text;
}

void append_lower_cased(QByteArray& out, std::string_view bytes) {
  const qsizetype before = out.size();
  out.resize(before + static_cast<qsizetype>(bytes.size()));
  if (isAscii(bytes)) {
    std::transform(bytes.begin(), bytes.end(), out.begin() + before, lowerAscii);
  } else if (!lowerLatin1(bytes, out.data() + before)) {
    out.truncate(before);
    out.append(std_to_ns(bytes).toLower().toUtf8());
  }
}

QString pluralEnding(qint64 count) {
  return count == 1 ? QString() : QStringLiteral("s");
}

}  // namespace ambrel
