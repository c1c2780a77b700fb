// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <vector>

#include "faults/FaultSession.h"

namespace ambrel::faults {

// What a run of the session may have left behind.
struct Aftermath {
  Task task = Task::Shoot;
  bool killed = false;         // in the middle of anything
  bool ended = false;          // as it was asked to, in the middle of anything
  bool faultStays = false;     // every call still failed at the end
  bool separateMoves = false;  // a photo moves by a second name or a copy, and for a moment has both names
  bool recovered = false;      // a start without faults has followed
  QStringList said;            // what the operator saw
  QStringList saidFirst;       // in the session that took the photos
};

// The folders that a session works on, and what must be true of them afterwards.
class World {
 public:
  explicit World(const QString& folder);

  void prepare();
  struct Photo {
    QByteArray sha256;
    bool onCard = false;  // of the camera as well: nothing is lost without it
  };
  // By number. Without this, those that the scripted worker says it has delivered.
  void expect(const QMap<int, Photo>& photos) { _taken = photos; }
  void clear() const;
  // One line for each invariant that does not hold.
  QStringList violations(const Aftermath& after) const;

  const QString& home() const { return _home; }
  QString deliveries() const { return _folder + QStringLiteral("/deliveries"); }

 private:
  using Contents = QMap<QString, QByteArray>;  // by path below home

  Contents contents() const;
  void put(const QString& path, const QByteArray& bytes);
  void checkPhotos(const Contents& now, const Aftermath& after, QStringList& wrong) const;
  void checkEarlierFiles(const Contents& now, QStringList& wrong) const;
  void checkStore(const Contents& now, const Aftermath& after, QStringList& wrong) const;
  void checkBackup(const Contents& now, const Aftermath& after, QStringList& wrong) const;
  void checkPlaces(const Contents& now, QStringList& wrong) const;
  void checkSaid(const Contents& now, const Aftermath& after, QStringList& wrong) const;
  QMap<int, Photo> photos() const;
  QMap<int, QStringList> placesOfPhotos(const Contents& now) const;
  std::vector<int> filed(const Contents& now,
                         const Aftermath& after) const;  // numbers of the photos in their folders

  QString _folder;
  QString _home;
  Contents _earlier;
  QMap<int, Photo> _taken;
};

}  // namespace ambrel::faults
