// SPDX-License-Identifier: Apache-2.0
#include "core/base/Preferences.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QStringDecoder>
#include <QTemporaryDir>
#include <algorithm>
#include <array>

#include "core/base/PosixFiles.h"

namespace ambrel {

namespace {

// Every key that is kept. Numbers and switches are stored as text, as the file shows them.
constexpr const char* kLastCSVPath = "AmbrelLastCSVPath";                    // path
constexpr const char* kLastTargetDir = "AmbrelLastTargetDir";                // path
constexpr const char* kLastSelectedRowIndex = "AmbrelLastSelectedRowIndex";  // number
constexpr const char* kLastCounterValue = "AmbrelLastCounterValue";          // number
constexpr const char* kAutoConnect = "AmbrelAutoConnectV2";                  // switch
constexpr const char* kBackupDir = "AmbrelBackupDir";                        // path
constexpr const char* kBackupEnabled = "AmbrelBackupEnabled";                // switch
constexpr const char* kBackupShareURL = "AmbrelBackupShareURL";              // text
constexpr const char* kBackupMAC = "AmbrelBackupMAC";                        // text
constexpr const char* kBackupHost = "AmbrelBackupHost";                      // text
constexpr const char* kLastUpdateCheck = "AmbrelLastUpdateCheck";            // date
constexpr const char* kSuffixes = "AmbrelSuffixes";                          // list of maps
constexpr const char* kWindowPlacement = "AmbrelWindowPlacement";            // text

constexpr std::array kKeys = {kLastCSVPath,    kLastTargetDir, kLastSelectedRowIndex, kLastCounterValue,
                              kAutoConnect,    kBackupDir,     kBackupEnabled,        kBackupShareURL,
                              kBackupMAC,      kBackupHost,    kLastUpdateCheck,      kSuffixes,
                              kWindowPlacement};

constexpr auto kYes = "true";
constexpr auto kNo = "false";

using Values = QMap<QString, QVariant>;

std::optional<QString> text(const Values& values, const char* key) {
  const QVariant value = values.value(QLatin1String(key));
  return value.typeId() == QMetaType::QString ? std::optional(value.toString()) : std::nullopt;
}

std::optional<qint64> number(const Values& values, const char* key) {
  bool valid = false;
  const qint64 parsed = text(values, key).value_or(QString()).toLongLong(&valid);
  return valid ? std::optional(parsed) : std::nullopt;
}

std::optional<bool> yesOrNo(const Values& values, const char* key) {
  const std::optional<QString> stored = text(values, key);
  if (stored == QLatin1String(kYes)) return true;
  if (stored == QLatin1String(kNo)) return false;
  return std::nullopt;
}

std::optional<QByteArray> bytesOf(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  QByteArray bytes = file.readAll();
  return file.error() == QFileDevice::NoError ? std::optional(bytes) : std::nullopt;
}

// The parser of the settings takes almost anything for a setting, so bytes that it never writes are looked
// for first.
bool isText(const QByteArray& bytes) {
  QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
  const QString decoded = decoder.decode(bytes);
  return !decoder.hasError() && !decoded.contains(QChar::Null);
}

// None for what is no file of settings.
std::optional<Values> parsed(const QString& path) {
  const QSettings settings(path, QSettings::IniFormat);
  // A section is parsed once it is asked for. A key in a section without a name is out of reach, and the next
  // writing would bring it up among ours.
  const QStringList keys = settings.allKeys();
  const bool reachable = std::none_of(keys.begin(), keys.end(),
                                      [](const QString& key) { return key.startsWith(QLatin1Char('/')); });
  if (!reachable || settings.status() == QSettings::FormatError) return std::nullopt;
  Values values;
  for (const char* key : kKeys) {
    const QString name = QLatin1String(key);
    if (!settings.contains(name)) continue;
    const QVariant value = settings.value(name);
    // A list without entries is written as a value of no type.
    values.insert(name, value.isValid() ? value : QVariantList());
  }
  return values;
}

// QSettings takes a file that it fails to read for an empty one, and keeps to that: it gets a copy of what
// has been read, of a name of its own each time. Where none can be made, the original has to do, if there is
// one.
std::optional<Values> parsedCopy(const QByteArray& bytes, const QString& original = {}) {
  const QTemporaryDir folder;
  QFile copy(folder.filePath(QStringLiteral("preferences.ini")));
  const bool written = folder.isValid() && copy.open(QIODevice::WriteOnly) &&
                       copy.write(bytes) == bytes.size() && copy.flush();
  copy.close();
  if (written) return parsed(copy.fileName());
  return original.isEmpty() ? std::nullopt : parsed(original);
}

// The settings put into `before`, the bytes of a file of settings; none unless they can be read back.
// QSettings is only the encoder, in a folder of its own: beside the file it would keep a lock, and one that a
// failing disk left behind would hold up everything until it is stale. Some keys of others it writes so that
// it cannot read the file again, and it does not notice every write that fails.
std::optional<QByteArray> encoded(const QByteArray& before, const Values& values,
                                  const QSet<QString>& removed) {
  const QTemporaryDir folder;
  if (!folder.isValid()) return std::nullopt;
  const QString copy = folder.filePath(QStringLiteral("preferences.ini"));
  QFile file(copy);
  if (!file.open(QIODevice::WriteOnly) || file.write(before) != before.size() || !file.flush())
    return std::nullopt;
  file.close();
  {
    QSettings settings(copy, QSettings::IniFormat);
    for (const QString& key : removed)
      settings.remove(key);
    for (auto value = values.cbegin(); value != values.cend(); ++value)
      settings.setValue(value.key(), value.value());
    settings.sync();
    if (settings.status() != QSettings::NoError) return std::nullopt;
  }
  const std::optional<QByteArray> bytes = bytesOf(copy);
  const std::optional<Values> read = bytes ? parsedCopy(*bytes) : std::nullopt;
  if (!read) return std::nullopt;
  const bool complete = std::all_of(values.keyBegin(), values.keyEnd(),
                                    [&read](const QString& key) { return read->contains(key); });
  return complete ? bytes : std::nullopt;
}

void keepAside(const QString& path) {
  const QString aside = path + QStringLiteral(".broken");
  QString name = aside;
  for (int number = 2; QFile::exists(name); ++number)
    name = QStringLiteral("%1-%2").arg(aside).arg(number);
  QFile::rename(path, name);
}

}  // namespace

Preferences::Preferences(const QString& file) : _file(file), _writer([this] { write(); }) {
  std::optional<QByteArray> bytes = bytesOf(file);
  // One failed read must not cost the settings of a whole session.
  if (!bytes) bytes = bytesOf(file);
  if (!bytes) return;
  std::optional<Values> values = parsedCopy(*bytes, file);
  if (values && values->isEmpty() && !bytes->isEmpty()) values = parsedCopy(*bytes, file);
  if (values && isText(*bytes)) {
    _values = *values;
  } else {
    keepAside(file);
  }
}

Preferences::~Preferences() {
  synchronize();
}

std::optional<QString> Preferences::lastCSVPath() const {
  return text(_values, kLastCSVPath);
}
void Preferences::setLastCSVPath(const QString& path) {
  set(kLastCSVPath, path);
}
std::optional<QString> Preferences::lastTargetDir() const {
  return text(_values, kLastTargetDir);
}
void Preferences::setLastTargetDir(const QString& path) {
  set(kLastTargetDir, path);
}
std::optional<qint64> Preferences::lastSelectedRowIndex() const {
  return number(_values, kLastSelectedRowIndex);
}
void Preferences::setLastSelectedRowIndex(qint64 row) {
  set(kLastSelectedRowIndex, QString::number(row));
}
std::optional<qint64> Preferences::lastCounterValue() const {
  return number(_values, kLastCounterValue);
}
void Preferences::setLastCounterValue(qint64 value) {
  set(kLastCounterValue, QString::number(value));
}
std::optional<bool> Preferences::autoConnect() const {
  return yesOrNo(_values, kAutoConnect);
}
void Preferences::setAutoConnect(bool on) {
  set(kAutoConnect, QLatin1String(on ? kYes : kNo));
}
std::optional<QString> Preferences::backupDir() const {
  return text(_values, kBackupDir);
}
void Preferences::setBackupDir(const QString& path) {
  set(kBackupDir, path);
}
std::optional<bool> Preferences::backupEnabled() const {
  return yesOrNo(_values, kBackupEnabled);
}
void Preferences::setBackupEnabled(bool on) {
  set(kBackupEnabled, QLatin1String(on ? kYes : kNo));
}
std::optional<QString> Preferences::backupShareURL() const {
  return text(_values, kBackupShareURL);
}
void Preferences::setBackupShareURL(const std::optional<QString>& url) {
  if (url) {
    set(kBackupShareURL, *url);
  } else {
    remove(kBackupShareURL);
  }
}
std::optional<QString> Preferences::backupMAC() const {
  return text(_values, kBackupMAC);
}
void Preferences::setBackupMAC(const std::optional<QString>& address) {
  if (address) {
    set(kBackupMAC, *address);
  } else {
    remove(kBackupMAC);
  }
}
std::optional<QString> Preferences::backupHost() const {
  return text(_values, kBackupHost);
}
void Preferences::setBackupHost(const QString& host) {
  set(kBackupHost, host);
}
std::optional<QDateTime> Preferences::lastUpdateCheck() const {
  const QVariant value = _values.value(QLatin1String(kLastUpdateCheck));
  const bool valid = value.typeId() == QMetaType::QDateTime && value.toDateTime().isValid();
  return valid ? std::optional(value.toDateTime()) : std::nullopt;
}
void Preferences::setLastUpdateCheck(const QDateTime& time) {
  set(kLastUpdateCheck, time.toUTC());
}
std::optional<QVariantList> Preferences::suffixes() const {
  const QVariant value = _values.value(QLatin1String(kSuffixes));
  // A list of nothing but words is read as one of texts.
  const bool isList = value.typeId() == QMetaType::QVariantList || value.typeId() == QMetaType::QStringList;
  return isList ? std::optional(value.toList()) : std::nullopt;
}
void Preferences::setSuffixes(const QVariantList& suffixes) {
  set(kSuffixes, suffixes);
}

std::optional<QString> Preferences::windowPlacement() const {
  return text(_values, kWindowPlacement);
}
void Preferences::setWindowPlacement(const QString& placement) {
  set(kWindowPlacement, placement);
}

void Preferences::removeWorkflowKeys() {
  for (const char* key : {kLastCSVPath, kLastTargetDir, kLastSelectedRowIndex, kLastCounterValue})
    remove(key);
}

void Preferences::synchronize() {
  if (!_changed) return;
  _changed = false;
  {
    const std::lock_guard lock(_mutex);
    _toWrite = {_values, _removed};
  }
  _writer.request();
}

void Preferences::synchronizeAndWait() {
  synchronize();
  _writer.finish();
}

void Preferences::set(const char* key, const QVariant& value) {
  QVariant& stored = _values[QLatin1String(key)];
  if (stored == value) return;
  stored = value;
  _removed.remove(QLatin1String(key));
  _changed = true;
}

void Preferences::remove(const char* key) {
  if (_values.remove(QLatin1String(key)) == 0) return;
  _removed.insert(QLatin1String(key));
  _changed = true;
}

// Settings that are not in memory stay as the file has them: perhaps it could not be read at the launch.
void Preferences::write() {
  Snapshot snapshot;
  {
    const std::lock_guard lock(_mutex);
    snapshot = _toWrite;
  }
  const std::optional<QByteArray> before = QFile::exists(_file) ? bytesOf(_file) : QByteArray();
  if (!before) return;
  std::optional<QByteArray> after = encoded(*before, snapshot.values, snapshot.removed);
  // Whatever failed once may not have been the file's fault.
  if (!after) after = encoded(*before, snapshot.values, snapshot.removed);
  if (!after && !before->isEmpty()) {
    std::optional<QByteArray> alone = encoded(QByteArray(), snapshot.values, snapshot.removed);
    // That it went well now may also mean that a fault of the disk has just ended.
    if (alone) after = encoded(*before, snapshot.values, snapshot.removed);
    if (alone && !after) {
      keepAside(_file);
      after = std::move(alone);
    }
  }
  if (!after) return;
  QDir().mkpath(_file.left(_file.lastIndexOf(QLatin1Char('/'))));
  (void)PosixFiles().replaceWhole(_file, *after);
}

}  // namespace ambrel
