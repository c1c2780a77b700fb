// SPDX-License-Identifier: Apache-2.0
// How long the operator waits for a long list: a key press in the search field, a click on the header, a
// paste, a photo counted. Times are processor time of the thread, so that other programs do not count.
#include <QAbstractListModel>
#include <QCollator>
#include <QFile>
#include <QProcess>
#include <QSortFilterProxyModel>
#include <algorithm>
#include <sys/resource.h>

#include "core/base/Text.h"
#include "support/Benchmark.h"
#include "support/ListSession.h"

namespace ambrel::bench {
namespace {

constexpr int kRows = 100'000;
constexpr int kManyRows = 1'000'000;
constexpr int kRounds = 21;
constexpr double kMicroseconds = 1e3;  // in a millisecond

QString haystack(const Row& row) {
  return std_to_ns(row[0]) + QLatin1Char(' ') + std_to_ns(row[1]);
}

std::vector<qint64> slowlyFound(const std::vector<Row>& rows, const QString& needle) {
  std::vector<qint64> found;
  for (std::size_t row = 0; row < rows.size(); ++row)
    if (haystack(rows[row]).toLower().contains(needle.toLower())) found.push_back(static_cast<qint64>(row));
  return found;
}

// ---- Search

// The same texts, already put together, in the toolkit's own filter.
class Haystacks : public QAbstractListModel {
 public:
  explicit Haystacks(const std::vector<Row>& rows) {
    std::transform(rows.begin(), rows.end(), std::back_inserter(_texts), haystack);
  }
  int rowCount(const QModelIndex& parent) const override {
    return parent.isValid() ? 0 : static_cast<int>(_texts.size());
  }
  QVariant data(const QModelIndex& index, int role) const override {
    return role == Qt::DisplayRole ? _texts[static_cast<std::size_t>(index.row())] : QVariant();
  }

 private:
  std::vector<QString> _texts;
};

double filterOfTheToolkit(const std::vector<Row>& rows, const QString& needle,
                          const std::vector<qint64>& expected) {
  Haystacks model(rows);
  QSortFilterProxyModel proxy;
  proxy.setFilterCaseSensitivity(Qt::CaseInsensitive);
  proxy.setSourceModel(&model);
  std::vector<double> times;
  for (int round = 0; round < 3; ++round) {
    proxy.setFilterFixedString(QString());
    require(proxy.rowCount() == static_cast<int>(rows.size()), "the peer shows not all rows");
    times.push_back(processorMillisecondsOf([&] { proxy.setFilterFixedString(needle); }));
    require(proxy.rowCount() == static_cast<int>(expected.size()), "the peer finds something else");
    for (int row = 0; row < proxy.rowCount(); ++row)
      require(proxy.mapToSource(proxy.index(row, 0)).row() == expected[static_cast<std::size_t>(row)],
              "the peer finds other rows");
  }
  return median(times);
}

double processorMillisecondsOfChildren() {
  rusage usage = {};
  getrusage(RUSAGE_CHILDREN, &usage);
  const auto milliseconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
  };
  return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

// Texts already put together, one after the other.
double containedIn(const std::vector<Row>& rows, const QString& needle, std::size_t expected) {
  std::vector<QString> texts;
  std::transform(rows.begin(), rows.end(), std::back_inserter(texts), haystack);
  std::vector<double> times;
  for (int round = 0; round < 5; ++round) {
    std::size_t found = 0;
    times.push_back(processorMillisecondsOf([&] {
      for (const QString& text : texts)
        found += text.contains(needle, Qt::CaseInsensitive) ? 1 : 0;
    }));
    require(found == expected, "the toolkit finds something else");
  }
  return median(times);
}

// Its start is part of it.
double ripgrep(const std::vector<Row>& rows, const QString& needle, std::size_t expected,
               const QString& folder) {
  QByteArray texts;
  for (const Row& row : rows)
    texts += haystack(row).toUtf8() + '\n';
  QFile file(folder + QStringLiteral("/texts"));
  require(file.open(QIODevice::WriteOnly) && file.write(texts) == texts.size() && file.flush(), "no texts");
  std::vector<double> times;
  for (int round = 0; round < 5; ++round) {
    QProcess search;
    const double before = processorMillisecondsOfChildren();
    search.start(QStringLiteral("rg"), {QStringLiteral("--threads=1"), QStringLiteral("--ignore-case"),
                                        QStringLiteral("--line-number"), needle, file.fileName()});
    require(search.waitForFinished() && search.exitCode() == 0, "no ripgrep: install the package ripgrep");
    times.push_back(processorMillisecondsOfChildren() - before);
    require(static_cast<std::size_t>(search.readAll().count('\n')) == expected, "the peer finds other rows");
  }
  return median(times);
}

// Every key press of typing and deleting these words.
std::vector<double> keyPresses(NameList& list, int rounds) {
  const std::vector<Row>& rows = list.grid().rows();
  const bool prove = rows.size() == kRows && list.sortMode() == SortMode::ListOrder;
  std::vector<double> times;
  for (int round = 0; round < rounds; ++round) {
    for (const char* utf8 : {"anna", "Schmidt", "front row", "müller", "zzz", "a", "e l", "ner second"}) {
      const QString word = QString::fromUtf8(utf8);
      for (qsizetype length = 1; length < 2 * word.size(); ++length) {
        const QString typed = word.left(length <= word.size() ? length : 2 * word.size() - length);
        times.push_back(processorMillisecondsOf([&] { list.setSearchText(typed); }));
        if (prove && round == 0 && length <= word.size())
          require(list.filteredRows() == slowlyFound(rows, NSTrim(typed)), "rows not found");
      }
      list.setSearchText(QString());
    }
  }
  return times;
}

void measureSearch(Goals& goals, Session& session, const std::vector<Row>& rows, const QString& folder) {
  NameList& list = session.list;
  session.show(rows);
  goals.mention("first key press after the list has come",
                processorMillisecondsOf([&] { list.setSearchText(QStringLiteral("x")); }));
  std::vector<double> times = keyPresses(list, 5);
  goals.mention("key press to new display order", times);
  goals.atMost("  p99", percentile(times, 99), 3);

  const QString needle = QStringLiteral("anna");
  std::vector<double> ours;
  for (int round = 0; round < kRounds; ++round) {
    list.setSearchText(QString());
    ours.push_back(processorMillisecondsOf([&] { list.setSearchText(needle); }));
  }
  const std::vector<qint64> found = slowlyFound(rows, needle);
  require(list.filteredRows() == found && found.size() > 1000, "rows not found");
  goals.atLeastTimesFaster("search for anna", ours, "QSortFilterProxyModel",
                           filterOfTheToolkit(rows, needle, found), 90);
  goals.mention("  rg on the same texts in a file", ripgrep(rows, needle, found.size(), folder));
  goals.mention("  QString::contains", containedIn(rows, needle, found.size()));
  goals.mention("  lower-casing every row anew", processorMillisecondsOf([&] { slowlyFound(rows, needle); }));
  list.setSearchText(QString());
}

// ---- Sort

std::vector<qint64> slowlySorted(const std::vector<Row>& rows, SortMode mode) {
  QCollator collator{QLocale()};
  collator.setCaseSensitivity(Qt::CaseInsensitive);
  std::vector<qint64> order(rows.size());
  std::vector<QString> names(rows.size());
  for (std::size_t row = 0; row < rows.size(); ++row) {
    order[row] = static_cast<qint64>(row);
    names[row] = std_to_ns(rows[row][0]);
  }
  std::stable_sort(order.begin(), order.end(), [&](qint64 a, qint64 b) {
    const int compared =
        collator.compare(names[static_cast<std::size_t>(a)], names[static_cast<std::size_t>(b)]);
    return mode == SortMode::Ascending ? compared < 0 : compared > 0;
  });
  return order;
}

// GNU sort on one name per line, on one processor.
double gnuSort(const std::vector<Row>& rows, const QString& folder) {
  require(QProcess::execute(QStringLiteral("localedef"),
                            {QStringLiteral("-i"), QStringLiteral("de_DE"), QStringLiteral("-f"),
                             QStringLiteral("UTF-8"), folder + QStringLiteral("/de_DE.UTF-8")}) == 0,
          "no German locale: install the package locales");
  QByteArray names;
  for (const Row& row : rows)
    names += QByteArray::fromStdString(row[0]) + '\n';
  QFile file(folder + QStringLiteral("/names"));
  require(file.open(QIODevice::WriteOnly) && file.write(names) == names.size() && file.flush(), "no names");
  QProcess sort;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("LOCPATH"), folder);
  environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
  sort.setProcessEnvironment(environment);
  const QStringList plain = {QStringLiteral("--parallel=1"), QStringLiteral("-o"),
                             folder + QStringLiteral("/sorted"), file.fileName()};
  const auto run = [&](const QStringList& arguments) {
    sort.start(QStringLiteral("sort"), arguments);
    require(sort.waitForFinished() && sort.exitCode() == 0, "the peer did not sort");
  };
  std::vector<double> times;
  for (int round = 0; round < 5; ++round) {
    const double before = processorMillisecondsOfChildren();
    run(plain);
    times.push_back(processorMillisecondsOfChildren() - before);
  }
  run({QStringLiteral("-c"), folder + QStringLiteral("/sorted")});
  QFile sorted(folder + QStringLiteral("/sorted"));
  require(sorted.open(QIODevice::ReadOnly) && sorted.readAll().size() == names.size(), "the peer lost names");
  return median(times);
}

void measureSort(Goals& goals, Session& session, const std::vector<Row>& rows, const QString& folder) {
  NameList& list = session.list;
  std::vector<double> first;
  std::vector<double> other;
  std::vector<double> again;
  for (int round = 0; round < 7; ++round) {
    session.show(rows);
    first.push_back(processorMillisecondsOf([&] { list.cycleSortMode(); }));
    require(round > 0 || list.filteredRows() == slowlySorted(rows, SortMode::Ascending), "not in order");
    other.push_back(processorMillisecondsOf([&] { list.cycleSortMode(); }));
    require(round > 0 || list.filteredRows() == slowlySorted(rows, SortMode::Descending), "not in order");
    list.cycleSortMode();
    again.push_back(processorMillisecondsOf([&] { list.cycleSortMode(); }));
    list.cycleSortMode();
    list.cycleSortMode();
  }
  goals.atMost("first click on the header", first, 50);
  goals.atLeastTimesFaster("  against GNU sort", first, "sort, de_DE", gnuSort(rows, folder), 5);
  goals.mention("  QCollator::compare",
                processorMillisecondsOf([&] { slowlySorted(rows, SortMode::Ascending); }));
  goals.atMost("other direction", other, 1);
  goals.atMost("sorted again", again, 1);

  const auto filterTime = [&] {
    std::vector<double> times;
    for (int round = 0; round < kRounds; ++round) {
      list.cycleCaptureFilter();
      times.push_back(processorMillisecondsOf([&] { list.cycleCaptureFilter(); }));
      list.cycleCaptureFilter();
    }
    return median(times);
  };
  const double unsorted = filterTime();
  list.cycleSortMode();
  goals.atMost("filter while sorted, beyond the filter alone", filterTime() - unsorted, 1);
  list.cycleCaptureFilter();
  goals.atMost("key press while sorted and filtered, p99", percentile(keyPresses(list, 3), 99), 3);
  list.cycleCaptureFilter();
  list.cycleCaptureFilter();
  list.cycleSortMode();
  list.cycleSortMode();
}

// ---- Edits

// What the next painting asks for after a name has changed.
void measureDuplicates(Goals& goals, NameList& list) {
  NameGrid& grid = list.editableGrid();
  goals.mention("duplicate names of a new list", processorMillisecondsOf([&] { grid.duplicateNameSet(); }));
  std::vector<double> renamed;
  for (int edit = 0; edit < 100; ++edit) {
    const qint64 row = (edit * 7919) % kRows;
    const std::string name = edit % 2 == 0 ? "Somebody " + std::to_string(edit) : grid.rows()[0][0];
    renamed.push_back(kMicroseconds * processorMillisecondsOf([&] {
                        grid.setBytes(row, Cell::Name, name);
                        grid.duplicateNameSet();
                      }));
  }
  NameGrid anew;
  anew.replaceAll(grid.rows());
  require(grid.duplicateNameSet() == anew.duplicateNameSet(), "other duplicate names");
  goals.atMost("duplicate names, after a name has changed", renamed, 1000, "us");
  goals.atMost("  the longest", percentile(renamed, 100), 1000, "us");
}

void measureEdits(Goals& goals, Session& session, const std::vector<Row>& rows) {
  NameList& list = session.list;
  session.show(rows);
  list.setSearchText(QStringLiteral("an"));
  list.cycleCaptureFilter();
  list.cycleSortMode();
  std::vector<double> counted;
  for (int photo = 0; photo < 300; ++photo) {
    const qint64 row = (photo * 7919) % kRows;
    const qint64 before = list.grid().capturedForModelRow(row);
    counted.push_back(processorMillisecondsOf([&] { list.markCaptureForRow(row); }));
    require(list.grid().capturedForModelRow(row) == before + 1, "a photo was not counted");
  }
  session.store.finishFlush();
  require(session.store.load() == list.grid().rows(), "the store does not hold the list");
  goals.atMost("one photo counted, saved and refiltered", counted, 5);
  goals.atMost("  p99: one frame", percentile(counted, 99), 16);
  measureDuplicates(goals, list);
  list.cycleSortMode();
  list.cycleSortMode();
  list.cycleCaptureFilter();
  list.cycleCaptureFilter();

  QString clipboard;
  for (const Row& row : rows)
    clipboard += std_to_ns(row[0]) + QLatin1Char('\t') + std_to_ns(row[1]) + QStringLiteral("\r\n");
  std::vector<double> pasted;
  for (int round = 0; round < 5; ++round) {
    session.show({});
    pasted.push_back(processorMillisecondsOf([&] { session.editing.paste(clipboard); }));
    require(list.grid().rowCount() == kRows && list.grid().rows().back()[0] == rows.back()[0], "not pasted");
  }
  goals.atMost("100,000 lines pasted", pasted, 300);
}

void measureManyRows(Goals& goals, Session& session) {
  NameList& list = session.list;
  session.show(peopleWithNotes(kManyRows));
  goals.mention("first key press", processorMillisecondsOf([&] { list.setSearchText(QStringLiteral("x")); }));
  goals.atMost("key press, p99", percentile(keyPresses(list, 1), 99), 50);
}

void measure(Goals& goals, const QString& folder) {
  QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
  Session session(folder);
  const std::vector<Row> rows = peopleWithNotes(kRows);
  std::printf("%d names with notes\n", kRows);
  measureSearch(goals, session, rows, folder);
  measureSort(goals, session, rows, folder);
  measureEdits(goals, session, rows);
  std::printf("%d names with notes\n", kManyRows);
  measureManyRows(goals, session);
}

}  // namespace
}  // namespace ambrel::bench

int main(int argc, char** argv) {
  return ambrel::bench::runBenchmark(argc, argv, ambrel::bench::measure);
}
