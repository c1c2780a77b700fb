// SPDX-License-Identifier: Apache-2.0
#include "integration/capture/PhotosModelFixture.h"

#include <QCoreApplication>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <utility>

#include "core/backup/BackupCopy.h"
#include "core/base/PathText.h"
#include "core/base/Text.h"
#include "support/Printing.h"

namespace ambrel {
namespace {

constexpr std::chrono::seconds kLongEnough{60};

const QStringList& suffixesOfTags() {
  static const QStringList kSuffixes = {"_FR", "_SS", "FR", "", "_A/B"};
  return kSuffixes;
}

std::string bytesIn(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}

PlainDisk::Entries everythingBelow(const std::string& folder) {
  PlainDisk::Entries entries;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    const bool isFile = entry.is_regular_file();
    entries[entry.path().string()] = isFile ? std::optional(bytesIn(entry.path())) : std::nullopt;
  }
  return entries;
}

}  // namespace

PhotosModelFixture::PhotosModelFixture() {
  QVariantList stored;
  for (const QString& suffix : suffixesOfTags())
    stored.append(QVariantMap{{"label", "tag"}, {"suffix", suffix}});
  preferences.setSuffixes(stored);
  tags.loadSuffixes();
  photoFiles.setDownloads(inDesk("Downloads"));
  photoFiles.holdBack([this](const std::string& path) {
    return lastName(path).find(PlainPhotos::kImmovable) != std::string::npos &&
           !path.starts_with(inDesk("Backup/"));
  });
  connectAll();
}

FilingDesk PhotosModelFixture::filingDesk() {
  return {.targetDir = [this] { return settings.targetDir(); },
          .selectedQueueItemName = [this] { return list.selectedQueueItemName(); },
          .enabledSuffixString = [this] { return tags.enabledSuffixString(); },
          .captureRow = [this] { return list.captureRow(); },
          .counter = [this] { return settings.counter(); },
          .advanceCounterPast = [this](qint64 used) { settings.advanceCounterPast(used); }};
}

RenameDesk PhotosModelFixture::renameDesk() {
  return {.targetDir = [this] { return settings.targetDir(); },
          .backupDestForSource =
              [this](const QString& folder) {
                if (!photos.backupOn) return QString();
                return backupDestForSource(folder, settings.targetDir(), path_to_ns(photos.backup));
              }};
}

void PhotosModelFixture::connectAll() {
  QObject::connect(&filer, &PhotoFiler::filed, [this](const QString& path, qint64 row) {
    filed.push_back({ns_to_path(path), row});
    list.markCaptureForRow(row);
    folders.noteFolderWithImage(path);
  });
  QObject::connect(&filer, &PhotoFiler::failed,
                   [this](const QString& message) { failures.push_back(message); });
  QObject::connect(&editing, &ListEditing::photoMoveRequested, [this](qint64 row, const QString& name) {
    rename.promptMoveFromRow(row, name);
    if (_onMoveAsked) std::exchange(_onMoveAsked, nullptr)();
  });
  QObject::connect(&folders, &PhotoFolders::pathLabelsStale, [this] {
    if (_onRescanned) std::exchange(_onRescanned, nullptr)();
  });
}

void PhotosModelFixture::clearDesk() const {
  std::filesystem::remove_all(desk);
  for (const std::string& name : listingOf(root.path().toStdString()))
    std::filesystem::remove_all(root.path().toStdString() + '/' + name);
}

void PhotosModelFixture::startShoot(unsigned seed) {
  startSequence(seed);
  clearDesk();
  photos.disk = PlainDisk();
  photos.disk.place(root.path().toStdString());
  for (const char* name : {"Photos", "Photos2", "Backup", "Downloads"}) {
    std::filesystem::create_directories(inDesk(name));
    photos.disk.makeFolders(inDesk(name));
  }
  photos.backup = inDesk("Backup");
  photos.backupOn = true;
  photos.tagSuffixes = suffixesOfTags();
  photos.listingOf = [this](const std::string& folder) { return listingFor(folder); };
  photos.filed.clear();
  filed.clear();
  _filedInBackup = 0;
  _photosMade.clear();
  settings.setCounterText("1");
  photos.counterField = 1;
  if (!photos.enabledSuffix.empty()) tags.switchAllOff();
  photos.enabledSuffix.clear();
  folders.forgetFolders();
  photos.foldersWithImages.clear();
  setTarget(inDesk("Photos"));
}

void PhotosModelFixture::startWith(const PlainList::Rows& rows) {
  list.editableGrid().replaceAll(rows);
  list.saveGridToDisk();
  list.selectAndShow(0);
  model.rows = rows;
  model.stored = true;
  model.select(0);
}

void PhotosModelFixture::setTarget(const std::string& folder) {
  settings.setTargetDir(path_to_ns(folder));
  photos.target = folder;
}

void PhotosModelFixture::serve() {
  ASSERT_TRUE(filer.finishQueued(kLongEnough));
  ASSERT_TRUE(rename.finishMirroring(kLongEnough));
  _onMoveAsked = nullptr;
  _onRescanned = nullptr;
  _listings = photoFiles.takeListings();
}

// ---- Comparing

PlainDisk::Names PhotosModelFixture::listingFor(const std::string& folder) {
  while (!_listings.empty() && _listings.front().folder != folder)
    _listings.pop_front();
  if (_listings.empty()) {
    ADD_FAILURE() << "no photo in " << folder << " was renamed";
    return {};
  }
  const PlainDisk::Names names = _listings.front().names;
  _listings.pop_front();
  return names;
}

void PhotosModelFixture::expectSame() {
  expectSameList();
  expectSameDisk();
  ASSERT_EQ(settings.counterFieldValue(), photos.counterField);
  const auto& noted = folders.foldersWithImages();
  ASSERT_EQ(std::set<std::string>(noted.begin(), noted.end()), photos.foldersWithImages);
}

void PhotosModelFixture::expectSameDisk() const {
  const PlainDisk::Entries onDisk = everythingBelow(root.path().toStdString());
  std::multiset<std::string> found;
  for (const auto& [path, bytes] : onDisk) {
    if (bytes) found.insert(*bytes);
  }
  ASSERT_EQ(found, _photosMade);
  PlainDisk::Entries expected = photos.disk.entries();
  expected.erase(root.path().toStdString());
  ASSERT_EQ(onDisk, expected);
}

void PhotosModelFixture::expectSaid() {
  ASSERT_EQ(person.alerts.size(), photos.alerts.size());
  for (std::size_t i = 0; i < photos.alerts.size(); ++i) {
    ASSERT_EQ(person.alerts[i].title, photos.alerts[i].title);
    const bool systemsWords = photos.alerts[i].message == PlainPhotos::kSystemsWords;
    ASSERT_TRUE(systemsWords || person.alerts[i].message == photos.alerts[i].message);
    ASSERT_FALSE(person.alerts[i].message.isEmpty());
  }
  if (!photos.status.isEmpty()) {
    ASSERT_EQ(statusLine.text(), photos.status);
  }
  person.alerts.clear();
  photos.alerts.clear();
  photos.status.clear();
}

void PhotosModelFixture::expectFiled() const {
  ASSERT_EQ(filed, photos.filed);
  ASSERT_EQ(failures.size(), photos.failures.size());
  for (std::size_t i = 0; i < failures.size(); ++i) {
    const bool systemsWords = photos.failures[i] == PlainPhotos::kSystemsWords;
    ASSERT_TRUE(systemsWords || failures[i] == photos.failures[i]) << failures[i].toStdString();
  }
}

// ---- Photos

std::string PhotosModelFixture::photoMadeIn(const std::string& path) {
  const std::string bytes = "photo " + std::to_string(++_photoNumber);
  std::ofstream(path, std::ios::binary) << bytes;
  photos.disk.makeFile(path, bytes);
  _photosMade.insert(bytes);
  return path;
}

std::string PhotosModelFixture::download(const std::string& extension, const std::string& name) {
  const std::string path = inDesk("Downloads/" + name + std::to_string(_photoNumber));
  return photoMadeIn(extension.empty() ? path : path + '.' + extension);
}

void PhotosModelFixture::file(const std::vector<std::string>& downloads) {
  for (const std::string& path : downloads)
    filer.handleDownloadedPath(path_to_ns(path));
  serve();
  for (const std::string& path : downloads)
    photos.file(path);
  expectFiled();
  copyFiledToBackup();
}

// What the backup's own queue does, once it gets to it.
void PhotosModelFixture::copyFiledToBackup() {
  for (; _filedInBackup < photos.filed.size(); ++_filedInBackup) {
    const std::string& path = photos.filed[_filedInBackup].path;
    const auto copy = photos.backupOf(path);
    const bool place = copy && photos.disk.exists(path) && photos.disk.makeFolders(parentPath(*copy));
    if (!copy) continue;
    std::error_code refused;
    std::filesystem::create_directories(plainPath(parentPath(*copy)), refused);
    const std::string bytes = place ? "copy of " + photos.disk.bytesOf(path) : "";
    if (!place || !photos.disk.makeFile(*copy, bytes)) continue;
    std::ofstream(plainPath(*copy), std::ios::binary) << bytes;
    _photosMade.insert(bytes);
  }
}

void PhotosModelFixture::rescan() {
  folders.rescanOutputFolders();
  serve();
  photos.rescan();
}

// ---- Moving and renaming

Answer PhotosModelFixture::answerTo(const std::vector<PlainPhotos::SuffixBox>& boxes, const QString& typed) {
  Answer answer{now(8) ? 1 : 0, {typed}, {}};
  for (const PlainPhotos::SuffixBox& box : boxes)
    answer.checks.push_back(box.checked != now(5));
  return answer;
}

void PhotosModelFixture::expectBoxes(const std::vector<PlainPhotos::SuffixBox>& boxes) const {
  ASSERT_FALSE(person.questions.empty());
  const auto& shown = person.questions.back().accessory->checkBoxes;
  ASSERT_EQ(shown.size(), boxes.size());
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    ASSERT_EQ(shown[i].title, boxes[i].title);
    ASSERT_EQ(shown[i].checked, boxes[i].checked);
  }
}

void PhotosModelFixture::moveWithAnswer(qint64 row, const std::optional<QString>& fixedName,
                                        const QString& typed, const std::function<void()>& bringUp) {
  const auto boxes = photos.suffixBoxes(row, listingOf(photos.target));
  const Answer answer = answerTo(boxes, typed);
  const Arrival arrival = now(4) ? Arrival::Early : now(3) ? Arrival::Late : Arrival::None;
  const std::string arriving = arrival == Arrival::None ? "" : download("JPG");
  const auto arrive = [&] { filer.handleDownloadedPath(path_to_ns(arriving)); };
  if (arrival == Arrival::Early) _onMoveAsked = arrive;
  if (arrival == Arrival::Late) _onRescanned = arrive;
  person.willAnswer(answer);
  bringUp();
  serve();
  expectBoxes(boxes);
  tellModelOfMove(row, fixedName.value_or(typed), boxes, answer, arrival, arriving);
  expectFiled();
  expectSaid();
  copyFiledToBackup();
}

void PhotosModelFixture::tellModelOfMove(qint64 row, const QString& name,
                                         const std::vector<PlainPhotos::SuffixBox>& boxes,
                                         const Answer& answer, Arrival arrival, const std::string& arriving) {
  PlainPhotos::Arrivals arrivals;
  if (arrival == Arrival::Early) arrivals.early = [&] { photos.file(arriving); };
  if (arrival == Arrival::Late) arrivals.late = [&] { photos.file(arriving); };
  if (answer.button != 0) {
    arrivals.early();
    return;
  }
  QStringList suffixes;
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    if (answer.checks[i]) suffixes.append(boxes[i].suffix);
  }
  photos.move(row, name, suffixes, arrivals);
}

void PhotosModelFixture::dropRowOntoRow(qint64 source, qint64 displayRow) {
  person.alerts.clear();
  const bool shown = displayRow >= 0 && displayRow < static_cast<qint64>(model.shown.size());
  const qint64 onto = shown ? model.shown[static_cast<std::size_t>(displayRow)] : -1;
  const TableDrop drop{.draggedRow = source, .ontoRow = true, .displayRow = displayRow};
  if (!shown || !model.contains(source) || source == onto) {
    ASSERT_FALSE(editing.acceptDrop(drop));
    return;
  }
  moveWithAnswer(source, std_to_ns(cellOf(model.row(onto), 0)), {}, [&] {
    ASSERT_TRUE(editing.acceptDrop(drop));
    QCoreApplication::processEvents();
  });
}

void PhotosModelFixture::renameRow(qint64 row, const QString& typed) {
  person.alerts.clear();
  if (!model.contains(row)) {
    rename.ctxRenameFolderAndImages(row);
    return;
  }
  moveWithAnswer(row, std::nullopt, typed, [&] {
    rename.ctxRenameFolderAndImages(row);
    if (_onMoveAsked) std::exchange(_onMoveAsked, nullptr)();
  });
}

void PhotosModelFixture::renameFolder(const std::string& folder, const QString& typed) {
  person.alerts.clear();
  if (photos.target.empty()) {
    rename.renameFolderInteractive();
    photos.alerts.push_back({"No Target Folder", "Choose a target folder first."});
    expectSaid();
    return;
  }
  const int button = now(8) ? 1 : 0;
  person.willChoose(path_to_ns(folder));
  person.willAnswer({button, {typed}, {}});
  rename.renameFolderInteractive();
  serve();
  if (button == 0) photos.renameFolder(folder, typed);
  expectSaid();
}

}  // namespace ambrel
