// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>
#include <array>
#include <set>
#include <string>

#include "soak/Account.h"
#include "soak/Plan.h"
#include "support/LiveApplication.h"

namespace ambrel::soak {

// Does what the operator of a plan does, by way of the application's intents.
class Hands {
 public:
  Hands(const Places& places, LiveApplication& live) : _places(places), _live(live) {}

  void select(int person);
  // Something about the person whose turn it is.
  void perform(const Action& action, int person);
  // Whether photos go elsewhere, or the camera is connected anew, after this act.
  static bool reconnects(Act act);
  bool savesToCardAlone() const;

  // Names of persons and folders whose photos may have been moved.
  const std::set<std::string>& moved() const { return _moved; }
  std::size_t count(Act act) const { return _counts[static_cast<std::size_t>(act)]; }
  std::size_t count() const;

 private:
  NameList& list() const { return _live.app->list(); }
  qint64 rowOf(unsigned number) const;
  QString folderName(qint64 row) const;
  void setCounter(unsigned choice);
  void editNote(qint64 row, unsigned choice);
  void insertRow(qint64 row, unsigned choice);
  void deleteRow(qint64 row);
  void search(qint64 row);
  void movePhotos(qint64 row, unsigned choice);
  void renameFolder(qint64 row, unsigned choice);
  void saveTo(int destination);

  const Places& _places;
  LiveApplication& _live;
  std::set<std::string> _moved;
  std::array<std::size_t, kActs> _counts{};
};

}  // namespace ambrel::soak
