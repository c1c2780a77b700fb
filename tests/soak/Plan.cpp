// SPDX-License-Identifier: Apache-2.0
#include "soak/Plan.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <random>

namespace ambrel::soak {
namespace {

using std::chrono::milliseconds;

constexpr double kPhotosPerMinute = 300;
constexpr std::size_t kLongestBurst = 10;
constexpr double kFaultsPerMinute = 2;
constexpr std::size_t kFewestFaults = 6;
constexpr double kRestartsPerMinute = 0.4;
constexpr milliseconds kLongestFault{8000};
// Of the length: the rest is for what the last fault leaves behind.
constexpr double kFaultsUntil = 0.92;
// Bursts that are shot before the photos go where they went before.
constexpr std::size_t kBurstsToCard = 2;
constexpr std::size_t kBurstsToDisk = 6;

constexpr std::array<const char*, kActs> kActNames = {
    "toggle a tag",  "edit a note", "set the counter", "insert a row",     "delete a row",
    "move a row",    "paste rows",  "toggle a marker", "search",           "cycle the filter",
    "cycle sorting", "move photos", "rename a folder", "save to disk",     "save to the card",
    "save to both",  "reconnect",   "export the list", "retry the backup", "back up what is missing"};

constexpr std::array<const char*, kMishaps> kMishapNames = {
    "worker killed", "worker stopped", "cable pulled",       "connection dropped", "camera off",
    "card out",      "target full",    "target nearly full", "target failing",     "target stale",
    "data full",     "data failing",   "data stale",         "backup moved away",  "backup gone",
    "backup hangs",  "backup full",    "backup failing",     "backup stale"};

// How often each comes in one round of them.
constexpr std::array<unsigned, kActs> kActsInARound = {4, 4, 2, 2, 1, 2, 1, 2, 2, 2,
                                                       1, 4, 2, 1, 1, 0, 1, 1, 1, 1};

class Dice {
 public:
  explicit Dice(std::uint64_t seed) : _random(seed) {}

  unsigned below(std::size_t limit) { return static_cast<unsigned>(_random() % limit); }
  template <typename Things>
  void shuffle(Things& things) {
    for (std::size_t left = things.size(); left > 1; --left)
      std::swap(things[left - 1], things[below(left)]);
  }

 private:
  std::mt19937_64 _random;
};

// Deals every card of a pack once, then all of them anew.
template <typename Card>
class Pack {
 public:
  Pack(std::vector<Card> cards, Dice& dice) : _cards(std::move(cards)), _dice(dice) {}

  Card next() {
    if (_dealt == 0) _dice.shuffle(_cards);
    const Card card = _cards[_dealt];
    _dealt = (_dealt + 1) % _cards.size();
    return card;
  }

 private:
  std::vector<Card> _cards;
  Dice& _dice;
  std::size_t _dealt = 0;
};

void planShots(Plan& plan, std::size_t photos, Dice& dice) {
  while (plan.photos < photos) {
    Burst burst{static_cast<int>(dice.below(kPersons)), plan.shots.size(), 1 + dice.below(kLongestBurst)};
    const unsigned taste = dice.below(10);
    const ShotKind kind = taste < 7 ? ShotKind::Jpeg : taste < 9 ? ShotKind::Pair : ShotKind::Raw;
    const std::size_t filesPerShot = kind == ShotKind::Pair ? 2 : 1;
    burst.shots = std::min(burst.shots, (photos - plan.photos + filesPerShot - 1) / filesPerShot);
    for (std::size_t i = 0; i < burst.shots; ++i)
      plan.shots.push_back({kind, kSmallestPhoto + kBetweenSizes * static_cast<int>(plan.shots.size())});
    plan.photos += burst.shots * filesPerShot;
    plan.bursts.push_back(burst);
  }
}

std::vector<Act> roundOfActs() {
  std::vector<Act> acts;
  for (std::size_t act = 0; act < kActs; ++act)
    acts.insert(acts.end(), kActsInARound[act], static_cast<Act>(act));
  return acts;
}

void planActions(Plan& plan, Dice& dice) {
  const std::vector<Act> round = roundOfActs();
  Pack<Act> acts(round, dice);
  const std::size_t bursts = plan.bursts.size();
  const std::size_t count = std::max(round.size(), bursts / 2);
  for (std::size_t i = 0; i < count; ++i) {
    const Action action{1 + i * (bursts - 1) / count, acts.next(), dice.below(1'000'000)};
    plan.actions.push_back(action);
    const bool toCard = action.act == Act::SaveToCard;
    if (!toCard && action.act != Act::SaveToDisk) continue;
    plan.actions.push_back({action.beforeBurst + (toCard ? kBurstsToCard : kBurstsToDisk), Act::SaveToBoth});
  }
  std::stable_sort(plan.actions.begin(), plan.actions.end(),
                   [](const Action& a, const Action& b) { return a.beforeBurst < b.beforeBurst; });
}

void planFaults(Plan& plan, double minutes, Dice& dice) {
  std::vector<Mishap> all(kMishaps);
  for (std::size_t mishap = 0; mishap < kMishaps; ++mishap)
    all[mishap] = static_cast<Mishap>(mishap);
  Pack<Mishap> mishaps(all, dice);
  const std::size_t count = std::max(kFewestFaults, static_cast<std::size_t>(minutes * kFaultsPerMinute));
  const auto slot = static_cast<std::size_t>(static_cast<double>(plan.length.count()) * kFaultsUntil) / count;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t longest = std::min<std::size_t>(slot / 3, kLongestFault.count());
    const milliseconds lasts(longest / 2 + dice.below(longest / 2));
    const milliseconds at(i * slot + slot / 4 + dice.below(slot / 4));
    plan.faults.push_back({at, lasts, mishaps.next(), dice.below(1'000'000)});
  }
}

void planRestarts(Plan& plan, double minutes, Dice& dice) {
  const std::size_t count = std::max<std::size_t>(1, static_cast<std::size_t>(minutes * kRestartsPerMinute));
  const auto slot = static_cast<std::size_t>(static_cast<double>(plan.length.count()) * kFaultsUntil) / count;
  for (std::size_t i = 0; i < count; ++i)
    plan.restarts.emplace_back(i * slot + slot / 3 + dice.below(slot / 2));
}

}  // namespace

Plan makePlan(double minutes, std::uint64_t seed) {
  Dice dice(seed);
  Plan plan;
  plan.length = milliseconds(static_cast<std::int64_t>(minutes * 60'000));
  const auto photos = static_cast<std::size_t>(minutes * kPhotosPerMinute);
  planShots(plan, std::min(photos, kMostPhotos), dice);
  planActions(plan, dice);
  planFaults(plan, minutes, dice);
  planRestarts(plan, minutes, dice);
  return plan;
}

double Plan::hours() const {
  return kHoursOfADay * static_cast<double>(photos) / kMostPhotos;
}

QString nameOf(Act act) {
  return QString::fromLatin1(kActNames[static_cast<std::size_t>(act)]);
}

QString nameOf(Mishap mishap) {
  return QString::fromLatin1(kMishapNames[static_cast<std::size_t>(mishap)]);
}

QStringList linesOf(const Plan& plan) {
  QStringList lines;
  auto action = plan.actions.begin();
  for (std::size_t i = 0; i < plan.bursts.size(); ++i) {
    for (; action != plan.actions.end() && action->beforeBurst <= i; ++action)
      lines << QStringLiteral("%1, choice %2").arg(nameOf(action->act)).arg(action->choice);
    const Burst& burst = plan.bursts[i];
    lines << QStringLiteral("burst %1: row %2, %3 shots").arg(i).arg(burst.person).arg(burst.shots);
  }
  for (const Fault& fault : plan.faults)
    lines << QStringLiteral("at %1 ms for %2 ms: %3")
                 .arg(fault.at.count())
                 .arg(fault.lasts.count())
                 .arg(nameOf(fault.mishap));
  for (const milliseconds at : plan.restarts)
    lines << QStringLiteral("at %1 ms: restart").arg(at.count());
  return lines;
}

}  // namespace ambrel::soak
