// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <random>

#include "core/base/Locations.h"
#include "core/base/PosixFiles.h"
#include "core/list/ListEditing.h"
#include "core/list/NameList.h"
#include "integration/list/PlainList.h"
#include "support/LongWait.h"
#include "support/MemoryFolder.h"
#include "support/ScriptedOperator.h"
#include "support/TestClock.h"

namespace ambrel {

// Waiting for the disk proves nothing here.
class UnflushedFiles : public PosixFiles {
 public:
  UnflushedFiles() : PosixFiles(_calls) {}
  Result<void> flush(const QString&) override { return {}; }

 private:
  class Calls : public FileSystemCalls {
   public:
    int flush(int) override { return 0; }
  };
  Calls _calls;
};

// A list and its plain model, and what an operator can do to both: each step does it to the list at random
// and tells the model what has to come of it.
class ListModelFixture : public ::testing::TestWithParam<unsigned> {
 protected:
  using Indices = PlainList::Indices;

  void startSequence(unsigned seed);
  // The list, what is shown of it, the selection, and the store.
  void expectSameList();
  void expectSameAfterReload();

  std::size_t below(std::size_t count) { return _random() % count; }
  const QString& anyOf(const QStringList& texts) {
    return texts[static_cast<qsizetype>(below(static_cast<std::size_t>(texts.size())))];
  }
  qint64 anyRow() { return static_cast<qint64>(below(model.rows.size() + 2)) - 1; }
  QString anyText();
  // The same without what ends a line or a cell.
  QString anyLine();

  void paste();
  void addFromSearch();
  void insertRow();
  void deleteRow();
  void reorder();
  void editCell();
  void toggleMarker();
  void takePhoto();
  void search();
  void filterOrSort();
  void selectInTable();
  void dropFile();
  void import();

  QTemporaryDir home{memoryFolderTemplate()};
  Locations locations = Locations::below(home.path());
  UnflushedFiles files;
  TestClock clock;
  ScriptedOperator person;
  StatusLine statusLine{clock, [] { return Readiness{}; }};
  Preferences preferences{locations.preferencesFile};
  ListStore store{files, locations, kAsLongAsItTakes};
  NameList list{store, preferences, statusLine};
  ListEditing editing{list, person, statusLine};
  PlainList model;
  QStringList wholeNames;  // taken as they are now and then, instead of putting one together
  QStringList pieces = {"Anna", "anna", "Ben", " ", "É", "ß", "Zoë", "Łu", "😀", ",", "\"", "b", "-"};

 private:
  QString anyFile(std::vector<std::string>& names);

  std::mt19937 _random;
};

}  // namespace ambrel
