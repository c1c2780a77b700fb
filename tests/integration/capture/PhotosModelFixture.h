// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <set>

#include "core/capture/CaptureSettings.h"
#include "core/capture/FolderRename.h"
#include "core/capture/PhotoFiler.h"
#include "core/capture/PhotoFolders.h"
#include "core/capture/Tags.h"
#include "integration/capture/MeddledFiles.h"
#include "integration/capture/PlainPhotos.h"
#include "integration/list/ListModelFixture.h"

namespace ambrel {

// A desk with a list, two target folders to choose from, a backup folder and a folder of downloads, and
// beside it the plain model of all that. Every photo has bytes of its own.
class PhotosModelFixture : public ListModelFixture {
 protected:
  PhotosModelFixture();
  // QTemporaryDir does not find what has no text for a name.
  ~PhotosModelFixture() override { clearDesk(); }

  void startShoot(unsigned seed);
  void startWith(const PlainList::Rows& rows);
  // The list, the folders and files with their bytes, and that no photo is lost.
  void expectSame();

  // ---- What can be done, and the model is told
  std::string download(const std::string& extension, const std::string& name = "IMG_");
  void file(const std::vector<std::string>& downloads);
  void rescan();
  void dropRowOntoRow(qint64 source, qint64 displayRow);
  void renameRow(qint64 row, const QString& typed);
  void renameFolder(const std::string& folder, const QString& typed);

  // ---- The same at random
  void filePhotos();
  void renameAnyRow() { renameRow(anyRow(), anyText()); }
  void dropAnyRow() { dropRowOntoRow(anyRow(), anyRow()); }
  void renameAnyFolder();
  void fileBesideRival(const std::vector<std::string>& downloads);
  void switchTag();
  void typeCounter();
  void chooseTarget();
  void switchBackup();
  // About half of these files, below the desk.
  void layOutSome(const std::vector<std::string>& names);
  void makeFileOutside();
  void makeFolderOutside();
  void removeOutside();
  void moveOutside();

  std::string inDesk(const std::string& name) const { return desk + '/' + name; }
  std::vector<std::string> foldersOnDesk() const;

  QTemporaryDir root{memoryFolderTemplate()};
  std::string desk = root.filePath("desk").toStdString();
  MeddledFiles photoFiles;
  CaptureSettings settings;
  Tags tags{preferences, person, statusLine};
  std::vector<PlainPhotos::Filed> filed;
  std::vector<QString> failures;
  PhotoFiler filer{photoFiles, filingDesk()};
  PhotoFolders folders{filer.thread(), list, [this] { return settings.targetDir(); }};
  FolderRename rename{photoFiles, filer.thread(), folders, list, tags, person, statusLine, renameDesk()};
  PlainPhotos photos{model};
  // Else every question is answered as it is shown, and no photo arrives meanwhile.
  bool answersVary = true;

 private:
  enum class Arrival { None, Early, Late };

  FilingDesk filingDesk();
  RenameDesk renameDesk();
  void connectAll();
  void clearDesk() const;
  void setTarget(const std::string& folder);
  void serve();
  void copyFiledToBackup();
  std::string photoMadeIn(const std::string& path);
  bool isFixture(const std::string& path) const;
  std::string anyEntry();
  PlainDisk::Names listingFor(const std::string& folder);
  void moveWithAnswer(qint64 row, const std::optional<QString>& fixedName, const QString& typed,
                      const std::function<void()>& bringUp);
  bool now(std::size_t often) { return answersVary && below(often) == 0; }
  Answer answerTo(const std::vector<PlainPhotos::SuffixBox>& boxes, const QString& typed);
  void tellModelOfMove(qint64 row, const QString& name, const std::vector<PlainPhotos::SuffixBox>& boxes,
                       const Answer& answer, Arrival arrival, const std::string& arriving);
  void expectBoxes(const std::vector<PlainPhotos::SuffixBox>& boxes) const;
  void expectSaid();
  void expectFiled() const;
  void expectSameDisk() const;

  std::deque<MeddledFiles::Listing> _listings;
  std::multiset<std::string> _photosMade;  // and other files: what must be on the disk, whatever its name
  std::size_t _filedInBackup = 0;
  int _photoNumber = 0;
  std::function<void()> _onMoveAsked;
  std::function<void()> _onRescanned;
};

}  // namespace ambrel
