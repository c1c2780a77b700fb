// SPDX-License-Identifier: Apache-2.0
#include "core/capture/Tags.h"

#include <QRect>
#include <QVariantMap>

#include "core/base/Text.h"

namespace ambrel {
namespace {

constexpr QLatin1String kLabelKey("label");
constexpr QLatin1String kSuffixKey("suffix");
constexpr QLatin1String kOnKey("on");

constexpr int kSaveButton = 0;

std::optional<Tag> storedTag(const QVariant& stored) {
  if (stored.typeId() != QMetaType::QVariantMap) return std::nullopt;
  const QVariantMap map = stored.toMap();
  Tag tag{map.value(kLabelKey).toString(), map.value(kSuffixKey).toString(), map.value(kOnKey).toBool()};
  return tag.label.isEmpty() ? std::nullopt : std::optional(std::move(tag));
}

Accessory editorFields(const std::vector<Tag>& tags) {
  constexpr int kTopRow = 120;
  constexpr int kRowStep = 30;
  Accessory fields{.size = {360, 176}};
  fields.labels = {{QRect(4, 156, 150, 16), QStringLiteral("Button label"), true},
                   {QRect(168, 156, 180, 16), QStringLiteral("Folder suffix"), true}};
  for (std::size_t row = 0; row < Tags::kMaxTags; ++row) {
    const int y = kTopRow - static_cast<int>(row) * kRowStep;
    const Tag tag = row < tags.size() ? tags[row] : Tag{};
    fields.textFields.push_back({QRect(4, y, 150, 24), tag.label, QStringLiteral("label")});
    fields.textFields.push_back({QRect(168, y, 180, 24), tag.suffix, QStringLiteral("_suffix")});
  }
  return fields;
}

// The tags that an editor with these texts stands for: label and suffix of each row in turn. A row keeps the
// state that the tag of the same row had.
std::vector<Tag> editedTags(const QStringList& texts, const std::vector<Tag>& before) {
  std::vector<Tag> tags;
  for (std::size_t row = 0; row < Tags::kMaxTags; ++row) {
    const auto field = 2 * static_cast<qsizetype>(row);
    const QString label = NSTrim(texts.value(field));
    if (label.isEmpty()) continue;
    tags.push_back({label, NSTrim(texts.value(field + 1)), row < before.size() && before[row].on});
  }
  if (tags.empty()) tags.push_back({QStringLiteral("FR"), QStringLiteral("_FR"), false});
  return tags;
}

}  // namespace

Tags::Tags(Preferences& preferences, Operator& operatorSeam, StatusLine& statusLine)
    : _preferences(preferences), _operator(operatorSeam), _statusLine(statusLine) {}

void Tags::loadSuffixes() {
  _suffixes.clear();
  for (const QVariant& stored : _preferences.suffixes().value_or(QVariantList())) {
    const std::optional<Tag> tag = storedTag(stored);
    if (tag && _suffixes.size() < kMaxTags) _suffixes.push_back(*tag);
  }
}

void Tags::saveSuffixes() {
  QVariantList stored;
  for (const Tag& tag : _suffixes) {
    stored.append(QVariantMap{{kLabelKey, tag.label}, {kSuffixKey, tag.suffix}, {kOnKey, tag.on}});
  }
  _preferences.setSuffixes(stored);
  _preferences.synchronize();
}

QString Tags::enabledSuffixString() const {
  QString joined;
  for (const Tag& tag : _suffixes) {
    if (tag.on) joined += tag.suffix;
  }
  return joined;
}

void Tags::suffixToggled(int index, bool on) {
  if (index < 0 || static_cast<std::size_t>(index) >= _suffixes.size()) return;
  _suffixes[static_cast<std::size_t>(index)].on = on;
  saveSuffixes();
  Q_EMIT toggled();
  const QString suffix = enabledSuffixString();
  _statusLine.setStatus(suffix.isEmpty()
                            ? QStringLiteral("No suffix active: photos save to plain name folders.")
                            : QStringLiteral("Suffix active: photos save to folders tagged \"") + suffix +
                                  QStringLiteral("\" (see Next: in the info line)."),
                        StatusKind::Neutral);
}

void Tags::manageSuffixes() {
  const Question editor{.title = QStringLiteral("Customize Suffixes"),
                        .message = QStringLiteral(
                            "Up to 5. Each has a short button label and the text added to the folder name "
                            "(e.g. label “FR”, suffix “_FR”). Leave a label blank to remove it."),
                        .buttons = {QStringLiteral("Save"), QStringLiteral("Cancel")},
                        .accessory = editorFields(_suffixes)};
  _operator.ask(editor, [this](const Answer& answer) {
    if (answer.button != kSaveButton) return;
    _suffixes = editedTags(answer.texts, _suffixes);
    saveSuffixes();
    Q_EMIT listReplaced();
  });
}

void Tags::switchAllOff() {
  for (Tag& tag : _suffixes)
    tag.on = false;
  saveSuffixes();
  Q_EMIT toggled();
}

}  // namespace ambrel
