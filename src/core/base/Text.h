// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <string>
#include <string_view>

namespace ambrel {

// Without white space and line breaks at both ends.
QString NSTrim(const QString& text);

// Between text and UTF-8 bytes. Bytes that are not valid UTF-8 give the empty text; a null text gives no
// bytes.
std::string ns_to_std(const QString& text);
QString std_to_ns(std::string_view bytes);
// Appends std_to_ns(bytes).toLower() in UTF-8.
void append_lower_cased(QByteArray& out, std::string_view bytes);

// The ending of a counted noun: empty for exactly one, else "s".
QString pluralEnding(qint64 count);

}  // namespace ambrel
