// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>

#include "ListFixture.h"
#include "core/list/ListTransfer.h"
#include "support/ScriptedOperator.h"

namespace ambrel {
namespace {

QString text(const char* utf8) {
  return QString::fromUtf8(utf8);
}

class ListTransferTest : public ListFixture {
 protected:
  void exportAndWait() {
    transfer.exportGrid();
    while (person.alerts.empty() && !statusWasSet())
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }

  ScriptedOperator person;
  ListTransfer transfer{list, person, statusLine, files};
};

TEST_F(ListTransferTest, ImportsIntoAnEmptyListWithoutAsking) {
  const QString names = writeFile(text("names.csv"), "Name\nAnna\nBen\n");
  person.willChoose(names);
  transfer.loadCSV();
  EXPECT_TRUE(person.questions.empty());
  EXPECT_EQ(list.grid().rowCount(), 2);
  EXPECT_EQ(list.csvPath(), names);
  EXPECT_EQ(storedList(), "File Name,Notes,Captured,Marker\nAnna,,0,\nBen,,0,");
  ASSERT_EQ(person.requests.size(), 1u);
  EXPECT_EQ(person.requests.front().kind, PathRequest::Kind::OpenFile);
  EXPECT_EQ(person.requests.front().extensions, QStringList({text("csv"), text("txt")}));
}

TEST_F(ListTransferTest, SavesThePathsAfterTheListAndTellsTheCountLast) {
  person.willChoose(writeFile(text("names.csv"), "Name\nAnna\nBen\n"));
  QObject::connect(&list, &NameList::persistentPathsStale, [this] {
    steps << text(person.alerts.empty() ? "no alert yet" : "alert")
          << text(store.exists() ? "stored" : "not stored");
  });
  transfer.loadCSV();
  EXPECT_EQ(steps.mid(steps.size() - 3),
            QStringList({text("save paths"), text("no alert yet"), text("stored")}));
  EXPECT_EQ(
      person.alerts,
      (std::vector<ScriptedOperator::Alert>{
          {text("Imported 2 names"),
           text("Only the FIRST COLUMN is imported (the first row is treated as a header and skipped). "
                "Other columns are ignored.\n\nExporting from Excel or Numbers? Only the first sheet of "
                "the exported CSV applies.\n\nAdd notes by double-clicking the Notes column.")}}));
}

TEST_F(ListTransferTest, CountsOneImportedNameInTheSingular) {
  person.willChoose(writeFile(text("names.csv"), "Name\nAnna"));
  transfer.loadCSV();
  EXPECT_EQ(person.alerts.front().title, text("Imported 1 name"));
}

TEST_F(ListTransferTest, ImportsNoNamesFromAFileOfAHeaderOnly) {
  person.willChoose(writeFile(text("names.csv"), "Name\n"));
  transfer.loadCSV();
  EXPECT_EQ(person.alerts.front().title, text("Imported 0 names"));
  EXPECT_TRUE(list.grid().isEmpty());
  EXPECT_EQ(steps.back(), text("save paths"));
}

TEST_F(ListTransferTest, AsksBeforeItReplacesAList) {
  startWith({{"Old"}});
  person.willChoose(writeFile(text("names.csv"), "Name\nAnna\n"));
  person.willAnswer(0);
  transfer.loadCSV();
  ASSERT_EQ(person.questions.size(), 1u);
  EXPECT_EQ(person.questions.front().title, text("Replace current list?"));
  EXPECT_EQ(
      person.questions.front().message,
      text("Importing replaces every name and note currently in the list. Use Export first if you want to "
           "keep them."));
  EXPECT_EQ(person.questions.front().buttons, QStringList({text("Replace"), text("Cancel")}));
  EXPECT_EQ(shownNames(), QStringList(text("Anna")));
}

TEST_F(ListTransferTest, KeepsTheListWhenTheOperatorCancels) {
  startWith({{"Old"}});
  person.willChoose(QString());
  transfer.loadCSV();
  person.willChoose(writeFile(text("names.csv"), "Name\nAnna\n"));
  person.willAnswer(1);
  transfer.loadCSV();
  EXPECT_EQ(shownNames(), QStringList(text("Old")));
  EXPECT_EQ(list.csvPath(), QString());
  EXPECT_EQ(files.replacements, 0);
  EXPECT_TRUE(person.alerts.empty());
  EXPECT_TRUE(person.scriptUsedUp());
}

TEST_F(ListTransferTest, EndsWithAnEmptyListWhenTheFileCannotBeRead) {
  startWith({{"Old"}});
  person.willChoose(path(text("missing.csv")));
  person.willAnswer(0);
  transfer.loadCSV();
  EXPECT_TRUE(list.grid().isEmpty());
  EXPECT_EQ(person.alerts.front().title, text("Imported 0 names"));
}

TEST_F(ListTransferTest, ImportsNoNamesFromAFolder) {
  person.willChoose(home.path());
  transfer.loadCSV();
  EXPECT_TRUE(list.grid().isEmpty());
  EXPECT_EQ(person.alerts.front().title, text("Imported 0 names"));
}

TEST_F(ListTransferTest, ImportsWhatIsNotTextAndStoresItWhole) {
  QByteArray bytes("h\n");
  for (int i = 0; i < 100'000; ++i)
    bytes += static_cast<char>(i * 7919 >> 3);
  person.willChoose(writeFile(text("photo.csv"), bytes));
  transfer.loadCSV();
  ASSERT_GT(list.grid().rowCount(), 0);
  const std::optional<std::vector<Row>> stored = store.load();
  ASSERT_TRUE(stored);
  ASSERT_EQ(static_cast<qint64>(stored->size()), list.grid().rowCount());
  for (qint64 row = 0; row < list.grid().rowCount(); ++row)
    EXPECT_EQ((*stored)[static_cast<std::size_t>(row)][0], list.grid().bytes(row, Cell::Name));
}

TEST_F(ListTransferTest, LeavesTheStoreOfBeforeWhenTheImportedListCannotBeSaved) {
  startWith({{"Old"}});
  ASSERT_TRUE(list.saveGridToDisk());
  files.fail = true;
  person.willChoose(writeFile(text("names.csv"), "Name\nAnna\n"));
  person.willAnswer(0);
  transfer.loadCSV();
  EXPECT_EQ(shownNames(), QStringList(text("Anna")));
  EXPECT_EQ(storedList(), "File Name,Notes,Captured,Marker\nOld,,0,");
}

TEST_F(ListTransferTest, ExportsNamesAndNotes) {
  startWith({{"Anna, B", "front", "3", "1"}, {"Ben"}});
  const QString target = path(text("Schüler.csv"));
  person.willChoose(target);
  exportAndWait();
  EXPECT_EQ(contentOf(target), "File Name,Notes\n\"Anna, B\",front\nBen,");
  EXPECT_EQ(statusLine.text(), text("Exported 2 rows to Schüler.csv."));
  EXPECT_EQ(statusLine.kind(), StatusKind::Good);
  EXPECT_EQ(list.csvPath(), QString());
  EXPECT_NE(files.replacingThread.load(), std::this_thread::get_id());
  ASSERT_EQ(person.requests.size(), 1u);
  EXPECT_EQ(person.requests.front().kind, PathRequest::Kind::SaveFile);
  EXPECT_EQ(person.requests.front().extensions, QStringList(text("csv")));
  EXPECT_EQ(person.requests.front().proposedName, text("ambrel-list.csv"));
}

TEST_F(ListTransferTest, SaysThatThereIsNothingToExport) {
  transfer.exportGrid();
  EXPECT_EQ(person.alerts,
            (std::vector<ScriptedOperator::Alert>{
                {text("Nothing to Export"), text("The list is empty. Import a CSV or paste names first.")}}));
  EXPECT_TRUE(person.requests.empty());
}

TEST_F(ListTransferTest, ExportsNothingWhenTheOperatorCancels) {
  startWith({{"Anna"}});
  person.willChoose(QString());
  transfer.exportGrid();
  QCoreApplication::processEvents();
  EXPECT_FALSE(statusWasSet());
  EXPECT_TRUE(person.alerts.empty());
}

TEST_F(ListTransferTest, SaysThatTheExportFailedAndLeavesTheList) {
  startWith({{"Anna"}});
  person.willChoose(path(text("no/such/folder/list.csv")));
  exportAndWait();
  EXPECT_EQ(person.alerts,
            (std::vector<ScriptedOperator::Alert>{
                {text("Export Failed"),
                 text("Could not write the CSV file. Check the destination folder permissions.")}}));
  EXPECT_EQ(shownNames(), QStringList(text("Anna")));
  EXPECT_FALSE(statusWasSet());
}

TEST_F(ListTransferTest, KeepsAnEarlierExportThatItFailsToReplace) {
  startWith({{"Anna"}});
  const QString target = writeFile(text("list.csv"), "earlier");
  files.fail = true;
  person.willChoose(target);
  exportAndWait();
  EXPECT_EQ(contentOf(target), "earlier");
  EXPECT_EQ(person.alerts.front().title, text("Export Failed"));
}

}  // namespace
}  // namespace ambrel
