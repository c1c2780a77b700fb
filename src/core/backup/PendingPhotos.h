// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <mutex>

namespace ambrel {

// The photos that are about to be filed, or are filed and not yet in the queue file, so that a process that
// dies in between forgets none. Each is a symbolic link in a folder of their own, to the path that the photo
// is about to take; the link's name says when. A file system makes or does not make a link, so there is no
// record cut short, and it never brings a move back after a crash without the link that was made before. Only
// where the photo lies on another volume does this take a flush.
//
// Safe to use from any thread. Where a link cannot be made the photo goes without.
class PendingPhotos {
 public:
  explicit PendingPhotos(QString folder) : _folder(std::move(folder)) {}

  // Before photos take these paths, which all lie on one volume. May wait for a disk; never for the main
  // thread.
  void add(const QString& path) { add(QStringList{path}); }
  void add(const QStringList& paths);
  // The photo needs no link any more. Unknown paths do no harm.
  void settle(const QString& path);
  // All paths with a link, those of earlier runs included, oldest first.
  QStringList paths();

 private:
  bool addLink(const QString& path);
  bool makeLink(const QByteArray& path, const QByteArray& link) const;
  void flushUnlessBeside(const QString& path) const;
  QByteArray linkPath(const QByteArray& name) const;

  const QString _folder;
  std::mutex _mutex;                  // guards the next two
  QHash<QString, QByteArray> _links;  // the name of the link to each path
  qint64 _lastName = 0;
};

}  // namespace ambrel
