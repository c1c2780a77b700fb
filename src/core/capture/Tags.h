// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <vector>

#include "core/base/Operator.h"
#include "core/base/Preferences.h"
#include "core/base/StatusLine.h"

namespace ambrel {

struct Tag {
  QString label;   // never empty
  QString suffix;  // appended to the folder name as it stands when on
  bool on = false;
  bool operator==(const Tag&) const = default;
};

// Up to five folder-name tags, saved after every change.
class Tags : public QObject {
  Q_OBJECT
 public:
  static constexpr std::size_t kMaxTags = 5;

  Tags(Preferences& preferences, Operator& operatorSeam, StatusLine& statusLine);

  void loadSuffixes();
  void saveSuffixes();
  const std::vector<Tag>& suffixes() const { return _suffixes; }
  // The suffixes of all tags that are on, joined in list order.
  QString enabledSuffixString() const;

  void suffixToggled(int index, bool on);  // an index out of range is ignored
  void manageSuffixes();                   // the editor
  void switchAllOff();

 Q_SIGNALS:
  void toggled();       // states changed: restyle the buttons, refresh the info line
  void listReplaced();  // the tags themselves changed: rebuild the buttons

 private:
  Preferences& _preferences;
  Operator& _operator;
  StatusLine& _statusLine;
  std::vector<Tag> _suffixes;
};

}  // namespace ambrel
