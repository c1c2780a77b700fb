// SPDX-License-Identifier: Apache-2.0
// How long the operator waits for a long list: a key press in the search field, a click on the header, a
// paste, a photo counted. Times are processor time of the thread, so that other programs do not count.
#include <QAbstractListModel>
#include <QCollator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSortFilterProxyModel>
#include <algorithm>
#include <sys/resource.h>

#include "core/base/Text.h"
#include "support/Benchmark.h"
#include "support/ListSession.h"
#include "support/OneCore.h"
#include "support/Turns.h"

namespace ambrel::bench {
namespace {

constexpr int kRows = 100'000;
constexpr int kManyRows = 1'000'000;
constexpr int kRounds = 21;
constexpr int kSortRounds = 15;
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

class FilterOfTheToolkit {
 public:
  explicit FilterOfTheToolkit(const std::vector<Row>& rows) : _model(rows) {
    _proxy.setFilterCaseSensitivity(Qt::CaseInsensitive);
    _proxy.setSourceModel(&_model);
  }
  double search(const QString& needle, const std::vector<qint64>& expected) {
    _proxy.setFilterFixedString(QString());
    require(_proxy.rowCount() == _model.rowCount({}), "the peer shows not all rows");
    const double taken = processorMillisecondsOf([&] { _proxy.setFilterFixedString(needle); });
    require(_proxy.rowCount() == static_cast<int>(expected.size()), "the peer finds something else");
    for (int row = 0; row < _proxy.rowCount(); ++row)
      require(_proxy.mapToSource(_proxy.index(row, 0)).row() == expected[static_cast<std::size_t>(row)],
              "the peer finds other rows");
    return taken;
  }

 private:
  Haystacks _model;
  QSortFilterProxyModel _proxy;
};

double processorMillisecondsOfChildren() {
  rusage usage = {};
  getrusage(RUSAGE_CHILDREN, &usage);
  const auto milliseconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
  };
  return milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
}

// Texts already put together, one after the other.
double containedIn(const std::vector<QString>& texts, const QString& needle, std::size_t expected) {
  std::size_t found = 0;
  const double taken = processorMillisecondsOf([&] {
    for (const QString& text : texts)
      found += text.contains(needle, Qt::CaseInsensitive) ? 1 : 0;
  });
  require(found == expected, "the toolkit finds something else");
  return taken;
}

void writeLines(const QString& path, const std::vector<QString>& lines) {
  QFile file(path);
  QByteArray bytes;
  for (const QString& line : lines)
    bytes += line.toUtf8() + '\n';
  require(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush(), "no lines");
}

// Its start is part of it.
double ripgrep(const QString& file, const QString& needle, std::size_t expected) {
  QProcess search;
  const double before = processorMillisecondsOfChildren();
  search.start(QStringLiteral("rg"), {QStringLiteral("--threads=1"), QStringLiteral("--ignore-case"),
                                      QStringLiteral("--line-number"), needle, file});
  require(search.waitForFinished() && search.exitCode() == 0, "no ripgrep: install the package ripgrep");
  const double taken = processorMillisecondsOfChildren() - before;
  require(static_cast<std::size_t>(search.readAll().count('\n')) == expected, "the peer finds other rows");
  return taken;
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

void measureOneSearch(Goals& goals, NameList& list, const QString& folder) {
  const QString needle = QStringLiteral("anna");
  const std::vector<Row>& rows = list.grid().rows();
  const std::vector<qint64> found = slowlyFound(rows, needle);
  require(found.size() > 1000, "next to nothing to find");
  std::vector<QString> texts;
  std::transform(rows.begin(), rows.end(), std::back_inserter(texts), haystack);
  const QString file = folder + QStringLiteral("/texts");
  writeLines(file, texts);
  FilterOfTheToolkit filter(rows);
  const auto taken =
      inTurns(kRounds, {[&] {
                          list.setSearchText(QString());
                          const double ours = processorMillisecondsOf([&] { list.setSearchText(needle); });
                          require(list.filteredRows() == found, "rows not found");
                          return ours;
                        },
                        [&] { return filter.search(needle, found); },
                        [&] { return ripgrep(file, needle, found.size()); },
                        [&] { return containedIn(texts, needle, found.size()); },
                        [&] { return processorMillisecondsOf([&] { slowlyFound(rows, needle); }); }});
  goals.atLeastTimesFaster("search for anna", taken[0], "QSortFilterProxyModel", taken[1], 90);
  goals.mention("  rg on the same texts in a file", taken[2]);
  goals.mention("  QString::contains", taken[3]);
  goals.mention("  lower-casing every row anew", taken[4]);
  list.setSearchText(QString());
}

void measureSearch(Goals& goals, Session& session, const std::vector<Row>& rows, const QString& folder) {
  NameList& list = session.list;
  session.show(rows);
  goals.mention("first key press after the list has come",
                processorMillisecondsOf([&] { list.setSearchText(QStringLiteral("x")); }));
  std::vector<double> times = keyPresses(list, 5);
  goals.mention("key press to new display order", times);
  goals.atMost("  p99", percentile(times, 99), 3);

  measureOneSearch(goals, list, folder);
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
class GnuSort {
 public:
  GnuSort(const std::vector<Row>& rows, QString folder) : _folder(std::move(folder)) {
    require(QProcess::execute(QStringLiteral("localedef"),
                              {QStringLiteral("-i"), QStringLiteral("de_DE"), QStringLiteral("-f"),
                               QStringLiteral("UTF-8"), _folder + QStringLiteral("/de_DE.UTF-8")}) == 0,
            "no German locale: install the package locales");
    std::vector<QString> names;
    std::transform(rows.begin(), rows.end(), std::back_inserter(names),
                   [](const Row& row) { return std_to_ns(row[0]); });
    writeLines(_names, names);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LOCPATH"), _folder);
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
    _process.setProcessEnvironment(environment);
  }

  double sort() {
    QFile::remove(_sorted);
    const double before = processorMillisecondsOfChildren();
    run({QStringLiteral("--parallel=1"), QStringLiteral("-o"), _sorted, _names});
    const double taken = processorMillisecondsOfChildren() - before;
    run({QStringLiteral("-c"), _sorted});
    require(QFileInfo(_sorted).size() == QFileInfo(_names).size(), "the peer lost names");
    return taken;
  }

 private:
  void run(const QStringList& arguments) {
    _process.start(QStringLiteral("sort"), arguments);
    require(_process.waitForFinished() && _process.exitCode() == 0, "the peer did not sort");
  }

  const QString _folder;
  const QString _names = _folder + QStringLiteral("/names");
  const QString _sorted = _folder + QStringLiteral("/sorted");
  QProcess _process;
};

void measureSort(Goals& goals, Session& session, const std::vector<Row>& rows, const QString& folder) {
  NameList& list = session.list;
  GnuSort gnuSort(rows, folder);
  std::vector<qint64> ascending;
  const std::vector<qint64> descending = slowlySorted(rows, SortMode::Descending);
  std::vector<double> other;
  std::vector<double> again;
  const Turn ours = [&] {
    session.show(rows);
    const double first = processorMillisecondsOf([&] { list.cycleSortMode(); });
    require(list.filteredRows() == ascending, "not in order");
    other.push_back(processorMillisecondsOf([&] { list.cycleSortMode(); }));
    require(list.filteredRows() == descending, "not in order");
    list.cycleSortMode();
    again.push_back(processorMillisecondsOf([&] { list.cycleSortMode(); }));
    list.cycleSortMode();
    list.cycleSortMode();
    return first;
  };
  const Turn collator = [&] {
    return processorMillisecondsOf([&] { ascending = slowlySorted(rows, SortMode::Ascending); });
  };
  collator();
  const OneCore core;
  const auto taken = inTurns(kSortRounds, {ours, [&] { return gnuSort.sort(); }, collator});
  goals.atMost("first click on the header", taken[0], 50);
  goals.atLeastTimesFaster("  against GNU sort", taken[0], "sort, de_DE", taken[1], 5);
  goals.mention("  QCollator::compare", taken[2]);
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
