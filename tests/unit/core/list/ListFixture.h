// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFile>
#include <QTemporaryDir>
#include <atomic>
#include <gtest/gtest.h>
#include <latch>
#include <thread>

#include "core/base/Locations.h"
#include "core/base/PosixFiles.h"
#include "core/base/Preferences.h"
#include "core/list/GridText.h"
#include "core/list/NameList.h"
#include "support/LongWait.h"
#include "support/TestClock.h"

namespace ambrel {

// The real Files, with what the list asks of it on record, and single calls broken on demand.
class WatchedFiles : public PosixFiles {
 public:
  Result<void> replaceWhole(const QString& path, const QByteArray& bytes) override {
    if (fail) return Failure{QStringLiteral("No space left on device")};
    replacingThread = std::this_thread::get_id();
    return PosixFiles::replaceWhole(path, bytes);
  }
  Result<void> replaceWholeUnflushed(const QString& path, const QByteArray& bytes) override {
    if (std::latch* const gate = hesitatesUntil) gate->wait();
    if (fail) return Failure{QStringLiteral("No space left on device")};
    ++replacements;
    replacingThread = std::this_thread::get_id();
    return PosixFiles::replaceWholeUnflushed(path, bytes);
  }
  Result<void> flush(const QString& path) override {
    ++flushes;
    flushingThread = std::this_thread::get_id();
    if (fail) return Failure{QStringLiteral("Input/output error")};
    return PosixFiles::flush(path);
  }

  std::atomic<bool> fail = false;
  std::atomic<std::latch*> hesitatesUntil = nullptr;
  std::atomic<int> replacements = 0;
  std::atomic<int> flushes = 0;
  std::atomic<std::thread::id> replacingThread;
  std::atomic<std::thread::id> flushingThread;
};

// A list on files of its own, with everything it says on record in the order it is said.
class ListFixture : public ::testing::Test {
 protected:
  ListFixture() {
    const auto record = [this](const QString& step) { return [this, step] { steps << step; }; };
    QObject::connect(&list, &NameList::reloaded, record(QStringLiteral("reload")));
    QObject::connect(&list, &NameList::tableSelectionChanged, [this](bool scroll) {
      steps << (scroll ? QStringLiteral("select and scroll") : QStringLiteral("select"));
    });
    QObject::connect(&list, &NameList::searchTextChanged, record(QStringLiteral("search text")));
    QObject::connect(&list, &NameList::persistentPathsStale, record(QStringLiteral("save paths")));
    QObject::connect(&list, &NameList::autoWatchStale, record(QStringLiteral("auto watch")));
    QObject::connect(&list, &NameList::captureFilterChanged, record(QStringLiteral("filter button")));
    QObject::connect(&list, &NameList::pathLabelsStale, record(QStringLiteral("path labels")));
    QObject::connect(&list, &NameList::controlsStale, record(QStringLiteral("controls")));
    QObject::connect(&list, &NameList::nameColumnTitleChanged,
                     [this](const QString& title) { steps << QStringLiteral("title: ") + title; });
    QObject::connect(&statusLine, &StatusLine::changed,
                     [this](const QString& text) { steps << QStringLiteral("status: ") + text; });
  }

  // Rows as they are, shown in list order, the first selected, nothing on record yet.
  void startWith(std::vector<Row> rows) {
    list.editableGrid().replaceAll(std::move(rows));
    list.setSelectedRow(0);
    list.applySearchFilter();
    steps.clear();
  }
  void storeHolds(const std::vector<Row>& rows) {
    QFile file(store.gridStorePath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(writeGrid(rows, GridColumns::All));
  }
  QString writeFile(const QString& name, const QByteArray& bytes) const {
    QFile file(path(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    EXPECT_EQ(file.write(bytes), bytes.size());
    return file.fileName();
  }
  QByteArray contentOf(const QString& absolutePath) const {
    QFile file(absolutePath);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no file)");
  }
  QByteArray storedList() const { return contentOf(store.gridStorePath()); }
  QString path(const QString& name) const { return home.filePath(name); }
  bool statusWasSet() const { return !steps.filter(QStringLiteral("status: ")).isEmpty(); }
  QStringList shownNames() const {
    QStringList names;
    for (const qint64 row : list.filteredRows())
      names << list.grid().text(row, Cell::Name);
    return names;
  }

  QTemporaryDir home;
  Locations locations = Locations::below(home.path());
  WatchedFiles files;
  TestClock clock;
  StatusLine statusLine{clock, [] { return Readiness{}; }};
  Preferences preferences{locations.preferencesFile};
  ListStore store{files, locations, kAsLongAsItTakes};
  NameList list{store, preferences, statusLine};
  QStringList steps;
};

}  // namespace ambrel
