// SPDX-License-Identifier: Apache-2.0
#include <QFileInfo>
#include <QUrl>

#include "core/platform/FileManager.h"

namespace ambrel {
namespace {

QString uriOf(const QString& file) {
  // dbus-send takes a comma for the end of an array's element.
  return QString::fromLatin1(QUrl::fromLocalFile(file).toEncoded(QUrl::FullyEncoded).replace(',', "%2C"));
}

}  // namespace

std::vector<FileManagerCommand> openFolderCommands(const QString& folder) {
  return {{QStringLiteral("xdg-open"), {folder}}};
}

std::vector<FileManagerCommand> revealCommands(const QString& file) {
  const FileManagerCommand showItems{
      QStringLiteral("dbus-send"),
      {QStringLiteral("--session"), QStringLiteral("--print-reply"), QStringLiteral("--reply-timeout=3000"),
       QStringLiteral("--dest=org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
       QStringLiteral("org.freedesktop.FileManager1.ShowItems"),
       QStringLiteral("array:string:") + uriOf(file), QStringLiteral("string:")}};
  return {showItems, openFolderCommands(QFileInfo(file).path()).front()};
}

}  // namespace ambrel
