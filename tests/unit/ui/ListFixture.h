// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "core/base/PosixFiles.h"
#include "core/base/Preferences.h"
#include "core/list/ListEditing.h"
#include "core/list/ListStore.h"
#include "core/list/NameList.h"
#include "support/LongWait.h"
#include "support/ScriptedOperator.h"
#include "support/TestClock.h"

namespace ambrel::ui {

// A list on real files, for tests of what shows it.
class ListFixture : public ::testing::Test {
 protected:
  void fill(std::vector<Row> rows) {
    _list.editableGrid().replaceAll(std::move(rows));
    _list.applySearchFilter();
  }
  // Names "Person 1" .. "Person n".
  void fillWithPeople(int count) {
    std::vector<Row> rows;
    for (int i = 1; i <= count; ++i)
      rows.push_back({"Person " + std::to_string(i), "", "0", ""});
    fill(std::move(rows));
  }

  QTemporaryDir _home;
  Locations _locations = Locations::below(_home.path());
  TestClock _clock;
  PosixFiles _files;
  Preferences _preferences{_locations.preferencesFile};
  StatusLine _statusLine{_clock, [] { return Readiness(); }};
  ListStore _store{_files, _locations, kAsLongAsItTakes};
  NameList _list{_store, _preferences, _statusLine};
  ScriptedOperator _operator;
  ListEditing _editing{_list, _operator, _statusLine};
};

}  // namespace ambrel::ui
