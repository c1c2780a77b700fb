// SPDX-License-Identifier: Apache-2.0
#include "core/list/SortedNames.h"

#include <QCollator>
#include <QString>
#include <QStringView>
#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <tuple>

// Comparing two names in the user's alphabet takes long, and a sort of n names compares them n log n times.
// So they are first put roughly into order by a few letters, read as numbers. What the alphabet sees
// differently is then mended by merging the runs that are in order already, which takes little more than one
// comparison per name.
namespace ambrel {

namespace {

// The user's own alphabet. The C locale has none and compares bytes, upper case before lower.
QCollator nameCollator() {
  const QLocale locale = QLocale().collation();
  QCollator collator(locale.language() == QLocale::C ? QLocale(QLocale::English) : locale);
  collator.setCaseSensitivity(Qt::CaseInsensitive);
  return collator;
}

// The first letters of a name without case and without the accents of western Europe.
struct Hint {
  static constexpr std::size_t kLetters = 16;
  std::uint64_t first = 0;
  std::uint64_t second = 0;
  qint64 row = 0;

  bool operator<(const Hint& other) const {
    return std::tie(first, second, row) < std::tie(other.first, other.second, other.row);
  }
};

Hint hintOf(const std::string& name, qint64 row) {
  // U+00C0 to U+00FF, which begin with C3 in UTF-8, by their second byte.
  constexpr std::string_view kPlain = "aaaaaaaceeeeiiiidnooooo*ouuuuytsaaaaaaaceeeeiiiidnooooo/ouuuuyty";
  std::array<unsigned char, Hint::kLetters> letters = {};
  std::size_t count = 0;
  for (std::size_t i = 0; i < name.size() && count < letters.size(); ++i) {
    auto letter = static_cast<unsigned char>(name[i]);
    if (letter == 0xC3 && i + 1 < name.size())
      letter = static_cast<unsigned char>(kPlain[static_cast<unsigned char>(name[++i]) % kPlain.size()]);
    if (letter >= 'A' && letter <= 'Z') letter |= 0x20;
    letters[count++] = letter;
  }
  Hint hint{0, 0, row};
  for (std::size_t i = 0; i < letters.size(); ++i) {
    std::uint64_t& half = i < letters.size() / 2 ? hint.first : hint.second;
    half = half << 8 | letters[i];
  }
  return hint;
}

struct Named {
  QStringView name;
  qint64 row;
};
using Names = std::vector<Named>;

// All names one after the other: one piece of memory instead of one for each.
struct NameTexts {
  explicit NameTexts(const NameGrid& grid) {
    starts.reserve(grid.rows().size() + 1);
    for (qint64 row = 0; row < grid.rowCount(); ++row) {
      starts.push_back(all.size());
      all += grid.text(row, Cell::Name);
    }
    starts.push_back(all.size());
  }
  QStringView operator[](qint64 row) const {
    const auto start = starts.begin() + row;
    return QStringView(all).sliced(start[0], start[1] - start[0]);
  }

  QString all;
  std::vector<qsizetype> starts;
};

Names roughlySorted(const NameGrid& grid, const NameTexts& texts) {
  std::vector<Hint> hints;
  hints.reserve(grid.rows().size());
  for (qint64 row = 0; row < grid.rowCount(); ++row)
    hints.push_back(hintOf(grid.bytes(row, Cell::Name), row));
  std::sort(hints.begin(), hints.end());
  Names names;
  names.reserve(hints.size());
  for (const Hint& hint : hints)
    names.push_back({texts[hint.row], hint.row});
  return names;
}

// Merges two neighbouring runs. Mostly they overlap in a few names only, if at all.
template <typename Before>
void mergeRuns(Names::iterator start, Names::iterator middle, Names::iterator end, const Before& before) {
  start = std::upper_bound(start, middle, *middle, before);
  if (start == middle) return;
  end = std::lower_bound(middle, end, *std::prev(middle), before);
  std::inplace_merge(start, middle, end, before);
}

template <typename Before>
void mergeAllRuns(Names& names, const Before& before) {
  std::vector<Names::iterator> starts;
  for (auto run = names.begin(); run != names.end();) {
    starts.push_back(run);
    run = std::is_sorted_until(run, names.end(), before);
  }
  while (starts.size() > 1) {
    std::vector<Names::iterator> merged;
    for (std::size_t i = 0; i < starts.size(); i += 2) {
      merged.push_back(starts[i]);
      const auto end = i + 2 < starts.size() ? starts[i + 2] : names.end();
      if (i + 1 < starts.size()) mergeRuns(starts[i], starts[i + 1], end, before);
    }
    starts = std::move(merged);
  }
}

}  // namespace

void SortedNames::update(const NameGrid& grid) {
  if (_seenNamesRevision == grid.namesRevision()) return;
  _seenNamesRevision = grid.namesRevision();
  const QCollator collator = nameCollator();
  const NameTexts texts(grid);
  Names names = roughlySorted(grid, texts);
  mergeAllRuns(names, [&collator](const Named& a, const Named& b) {
    const int order = collator.compare(a.name, b.name);
    return order < 0 || (order == 0 && a.row < b.row);
  });
  _ascending.clear();
  _descending.clear();
  for (const Named& named : names)
    _ascending.push_back(named.row);
  // Not ascending reversed: names that compare equal keep their order.
  for (auto end = names.end(); end != names.begin();) {
    auto start = std::prev(end);
    while (start != names.begin() && collator.compare(std::prev(start)->name, start->name) == 0)
      --start;
    std::transform(start, end, std::back_inserter(_descending), [](const Named& named) { return named.row; });
    end = start;
  }
}

}  // namespace ambrel
