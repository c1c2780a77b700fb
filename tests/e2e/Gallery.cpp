// SPDX-License-Identifier: Apache-2.0
// Paints the window in its states, without a screen, at scale 1 and 2.
//   ambrel_gallery FOLDER
#include <QApplication>
#include <QContextMenuEvent>
#include <QDir>
#include <QDropEvent>
#include <QFileDialog>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <cstdio>

#include "core/base/PosixFiles.h"
#include "core/base/Text.h"
#include "core/capture/FileNames.h"
#include "support/TestClock.h"
#include "support/TestLink.h"
#include "ui/Appearance.h"
#include "ui/Dialogs.h"
#include "ui/MainWindow.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

constexpr quint64 kGiB = 1024ULL * 1024 * 1024;

// Volumes of a size that is the same on every machine.
class GalleryFiles : public PosixFiles {
 public:
  VolumeSpace volumeSpace(const QString&) override { return {freeSpace, 500 * kGiB}; }
  quint64 freeSpace = 212 * kGiB;
};

std::vector<Row> people() {
  return {{"Anna Kowalska", "", "4", "1"},
          {"Ben Okafor", "front row, left", "2", ""},
          {"Chiara Rossi", "", "0", ""},
          {"José Álvarez", "late, comes at ten", "7", "1"},
          {"Smith/Jones, twins", "", "0", ""},
          {"Мария Иванова", "", "1", ""},
          {"नेहा शर्मा", "", "0", ""},
          {"Anna KOWALSKA", "", "0", ""},
          {"Nguyễn Văn An", "glasses off", "3", ""},
          {"Zoë Brontë-van der Westhuizen-Featherstonehaugh the Younger of Upper Wallop", "", "12", ""},
          {"Omar Haddad", "", "0", ""},
          {"Priya Raman", "", "0", ""}};
}

// A home with five tags, two of them on.
Locations prepareHome(const QString& path) {
  const Locations locations = Locations::below(path);
  QVariantList tags;
  for (const char* label : {"FR", "SS", "Indoor", "PM", "📷"}) {
    const QString text = QString::fromUtf8(label);
    tags << QVariantMap{{QStringLiteral("label"), text},
                        {QStringLiteral("suffix"), QLatin1Char('_') + text},
                        {QStringLiteral("on"), text == QLatin1String("FR") || text == QLatin1String("PM")}};
  }
  Preferences preferences(locations.preferencesFile);
  preferences.setSuffixes(tags);
  preferences.synchronize();
  return locations;
}

// The whole application on a clock that stands still, a worker that says what it is told to, and files in a
// temporary folder.
class Stage {
 public:
  explicit Stage(const QString& folder) : _folder(folder) {
    _dialogs.setParentWindow(&window);
    delegate.applicationDidFinishLaunching(window);
    _clock.advance(AmbrelAppDelegate::kSplashTime);
  }
  ~Stage() {
    delegate.applicationWillTerminate();
    qputenv("HOME", _ownHome);
  }

  void fill(std::vector<Row> rows) {
    delegate.list().editableGrid().replaceAll(std::move(rows));
    delegate.list().setCsvPath(QStringLiteral("/home/kim/class of 2026.csv"));
    delegate.list().selectSavedOrFirstCSVRow();
    refresh();
  }
  void chooseFolder() {
    const QString folder = _home.filePath(QStringLiteral("Summer school"));
    // The folder is shown as one in the operator's home, whose name here is another each time.
    qputenv("HOME", _home.path().toLocal8Bit());
    putPhotos(folder);
    delegate.selectFolder();
    auto* chooser = qobject_cast<QFileDialog*>(dialog());
    chooser->setDirectory(folder);
    static_cast<QDialog*>(chooser)->done(QDialog::Accepted);
    settle();
    refresh();
  }
  void connectCamera() {
    delegate.connectCameraManual();
    link.say("READY|OK");
    link.say("CONNECTED|");
    refresh();
  }
  void setFreeSpace(quint64 bytes) {
    _files.freeSpace = bytes;
    delegate.storage().updateStorageLabel();
    QCoreApplication::processEvents();
  }
  void select(const std::vector<qint64>& displayRows) {
    delegate.list().tableViewSelectionDidChange(displayRows);
    Q_EMIT delegate.list().tableSelectionChanged(true);
  }
  void refresh() {
    delegate.updatePathLabels();
    delegate.updateControls();
    delegate.statusLine().refreshReadyStatusIfIdle();
  }
  QWidget* dialog() {
    settle();
    return _dialogs.openDialog();
  }
  Dialogs& dialogs() { return _dialogs; }

  // The widget as it looks now, beside the pictures before; `over` lies on it where it lies on the screen.
  void shoot(const QString& name, QWidget* widget = nullptr, QWidget* over = nullptr) {
    QWidget& subject = widget ? *widget : window;
    settle();
    for (const int scale : {1, 2}) {
      QImage picture(subject.size() * scale, QImage::Format_ARGB32_Premultiplied);
      picture.setDevicePixelRatio(scale);
      picture.fill(Qt::transparent);
      subject.render(&picture, {}, {}, QWidget::DrawWindowBackground | QWidget::DrawChildren);
      if (over) over->render(&picture, over->mapToGlobal(QPoint()) - subject.mapToGlobal(QPoint()));
      const QString file = QStringLiteral("%1/%2@%3x.png").arg(_folder, name).arg(scale);
      if (!picture.save(file)) qFatal("cannot write %s", qPrintable(file));
    }
  }

 private:
  // As many photos on the disk as the list counts, which it is about to find out again.
  void putPhotos(const QString& folder) {
    if (!QDir().mkpath(folder)) qFatal("cannot make %s", qPrintable(folder));
    const NameGrid& grid = delegate.list().grid();
    for (qint64 row = 0; row < grid.rowCount(); ++row) {
      const QString name = std_to_ns(sanitize_filename(grid.bytes(row, Cell::Name)));
      for (qint64 photo = 1; photo <= grid.capturedForModelRow(row); ++photo) {
        QDir(folder).mkpath(name);
        QFile file(QStringLiteral("%1/%2/%2_%3.JPG").arg(folder, name).arg(photo, 4, 10, QLatin1Char('0')));
        if (!file.open(QIODevice::WriteOnly)) qFatal("cannot write %s", qPrintable(file.fileName()));
      }
    }
  }
  // What other threads were asked for has come, and what followed from it.
  void settle() {
    if (!delegate.photoFiler().finishQueued(std::chrono::seconds(20))) qFatal("the folders are not read");
    QCoreApplication::processEvents();
  }

  QString _folder;
  const QByteArray _ownHome = qgetenv("HOME");
  QTemporaryDir _home;
  Locations _locations = prepareHome(_home.path());
  TestClock _clock;
  Dialogs _dialogs;
  GalleryFiles _files;

 public:
  TestLink link;
  AmbrelAppDelegate delegate{
      _clock, _dialogs, _files, link, {_locations, Bundle(QStringLiteral(AMBREL_BUNDLE_DIR)), [](qint64) {}}};
  MainWindow window{delegate};
};

struct Picture {
  const char* name;
  std::function<void(Stage& stage, const QString& name)> take;
};

void takeListPictures(std::vector<Picture>& pictures) {
  pictures.push_back({"empty", [](Stage& stage, const QString& name) { stage.shoot(name); }});
  pictures.push_back({"list", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.select({2});
                        stage.shoot(name);
                      }});
  pictures.push_back({"selected_with_photos_and_note", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.select({3});
                        stage.shoot(name);
                      }});
  pictures.push_back({"multiple_selection", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.select({1, 3, 4, 5});
                        stage.shoot(name);
                      }});
  pictures.push_back({"searching", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.window.leftPane()->searchField()->setText(QStringLiteral("an"));
                        stage.delegate.list().setSearchText(QStringLiteral("an"));
                        stage.refresh();
                        stage.shoot(name);
                      }});
  pictures.push_back({"filtered_and_sorted", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.delegate.list().cycleCaptureFilter();
                        stage.delegate.list().cycleSortMode();
                        stage.shoot(name);
                      }});
  pictures.push_back({"long_list", [](Stage& stage, const QString& name) {
                        std::vector<Row> rows;
                        for (int i = 1; i <= 100000; ++i)
                          rows.push_back({"Person " + std::to_string(i), "", std::to_string(i % 3), ""});
                        stage.fill(std::move(rows));
                        stage.select({50000});
                        stage.shoot(name);
                      }});
}

// What a camera might see: a person before a wall.
QImage portrait(QSize size) {
  QImage image(size, QImage::Format_RGB32);
  QPainter painter(&image);
  QLinearGradient wall(0, 0, 0, size.height());
  wall.setColorAt(0, QColor(214, 222, 228));
  wall.setColorAt(1, QColor(150, 164, 176));
  painter.fillRect(image.rect(), wall);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  const double unit = size.height() / 10.0;
  const QPointF middle(size.width() / 2.0, size.height() / 2.0);
  painter.setBrush(QColor(46, 84, 120));
  painter.drawEllipse(middle + QPointF(0, 5.2 * unit), 3.6 * unit, 3.4 * unit);
  painter.setBrush(QColor(222, 184, 156));
  painter.drawEllipse(middle - QPointF(0, 0.6 * unit), 1.7 * unit, 2.2 * unit);
  painter.setBrush(QColor(70, 48, 36));
  painter.drawChord(QRectF(middle.x() - 1.8 * unit, middle.y() - 3.1 * unit, 3.6 * unit, 3.4 * unit), 0,
                    180 * 16);
  return image;
}

void takeRowPictures(std::vector<Picture>& pictures) {
  pictures.push_back({"context_menu", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.select({1});
                        NameTable* table = stage.window.leftPane()->table();
                        const QPoint place = table->visualRect(table->model()->index(4, 1)).center();
                        QContextMenuEvent event(QContextMenuEvent::Mouse, place,
                                                table->viewport()->mapToGlobal(place));
                        QApplication::sendEvent(table->viewport(), &event);
                        stage.shoot(name, nullptr, table->rowMenu());
                        table->rowMenu()->hide();
                      }});
  pictures.push_back({"editing_a_name", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.select({3});
                        NameTable* table = stage.window.leftPane()->table();
                        table->edit(table->model()->index(3, 1));
                        stage.shoot(name);
                      }});
  pictures.push_back({"dragging_a_row", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.select({2});
                        NameTable* table = stage.window.leftPane()->table();
                        const std::unique_ptr<QMimeData> row(rowPayload(2));
                        const QPoint between(100, table->rowViewportPosition(6) + 1);
                        QDragEnterEvent event(between, Qt::MoveAction, row.get(), Qt::LeftButton, {});
                        QApplication::sendEvent(table->viewport(), &event);
                        stage.shoot(name);
                        const QPoint onto = table->visualRect(table->model()->index(6, 1)).center();
                        QDragMoveEvent move(onto, Qt::CopyAction, row.get(), Qt::LeftButton, {});
                        QApplication::sendEvent(table->viewport(), &move);
                        stage.shoot(name + QStringLiteral("_onto_another"));
                      }});
  pictures.push_back({"preview", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.connectCamera();
                        stage.select({3});
                        PreviewPane* pane = stage.window.rightPane();
                        pane->showPhoto(portrait(QSize(1500, 1000)),
                                        QStringLiteral("José Álvarez_0031.JPG  (30/31)"));
                        pane->updateControls(true, true);
                        stage.shoot(name);
                      }});
}

void takeCameraPictures(std::vector<Picture>& pictures) {
  pictures.push_back({"connecting", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.delegate.connectCameraManual();
                        stage.shoot(name);
                      }});
  pictures.push_back({"watching", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.connectCamera();
                        stage.shoot(name);
                      }});
  pictures.push_back({"error", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.delegate.statusLine().setStatus(
                            QStringLiteral("Camera disconnected. Retrying..."), StatusKind::Error);
                        stage.shoot(name);
                      }});
  pictures.push_back({"storage_low", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.setFreeSpace(31 * kGiB);
                        stage.shoot(name);
                      }});
  pictures.push_back({"storage_critical", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.setFreeSpace(9 * kGiB + kGiB / 2);
                        stage.shoot(name);
                        stage.shoot(name + QStringLiteral("_alert"), stage.dialog());
                      }});
}

void takeBackupPictures(std::vector<Picture>& pictures) {
  struct Named {
    const char* name;
    BackupState state;
  };
  const QString folder = QStringLiteral("/media/kim/Backup drive/Summer school");
  const Named states[] = {
      {"backup_off", {.dir = folder}},
      {"backup_up_to_date", {.enabled = true, .dir = folder}},
      {"backup_waiting", {.enabled = true, .dir = folder, .queued = 12}},
      {"backup_copying",
       {.enabled = true, .dir = folder, .queued = 3, .busy = true, .batchDone = 9, .batchTotal = 12}},
      {"backup_slow",
       {.enabled = true,
        .dir = folder,
        .queued = 3,
        .busy = true,
        .slow = true,
        .batchDone = 1,
        .batchTotal = 4}},
      {"backup_offline", {.enabled = true, .dir = folder, .queued = 137, .offline = true, .batchTotal = 137}},
  };
  for (const auto& [name, state] : states) {
    pictures.push_back({name, [state = state](Stage& stage, const QString& file) {
                          stage.fill(people());
                          stage.chooseFolder();
                          stage.window.topPanel()->showBackup(backupCardLook(state));
                          SettingsPopover* settings = stage.window.settingsPopover();
                          settings->showBackup(state.dir, backupButtonLook(state), backupPopUp(state));
                          settings->toggleSettingsPopover(stage.window.topPanel()->gearButton());
                          stage.shoot(file);
                        }});
  }
}

void takeDialogPictures(std::vector<Picture>& pictures) {
  pictures.push_back({"settings", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.window.settingsPopover()->toggleSettingsPopover(
                            stage.window.topPanel()->gearButton());
                        stage.shoot(name);
                      }});
  pictures.push_back({"dialog_import", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.dialogs().ask(
                            {QStringLiteral("Replace current list?"),
                             QStringLiteral("Importing replaces every name and note currently "
                                            "in the list. Use Export first if you want to keep "
                                            "them."),
                             {QStringLiteral("Replace"), QStringLiteral("Cancel")}},
                            [](const Answer&) {});
                        stage.shoot(name, stage.dialog());
                      }});
  pictures.push_back({"dialog_note", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.delegate.listEditing().ctxEditNote(3);
                        stage.shoot(name, stage.dialog());
                      }});
  pictures.push_back({"dialog_dropped_list", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.delegate.listEditing().importDroppedCSVPaths({QStringLiteral("/tmp/more.csv")});
                        stage.shoot(name, stage.dialog());
                      }});
  pictures.push_back({"dialog_move", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.delegate.folderRename().ctxRenameFolderAndImages(0);
                        stage.shoot(name, stage.dialog());
                      }});
  pictures.push_back({"dialog_reset", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.delegate.resetWorkflow();
                        stage.shoot(name, stage.dialog());
                      }});
  pictures.push_back({"dialog_tags", [](Stage& stage, const QString& name) {
                        stage.delegate.tags().manageSuffixes();
                        stage.shoot(name, stage.dialog());
                      }});
  pictures.push_back({"dialog_chooser", [](Stage& stage, const QString& name) {
                        stage.delegate.selectFolder();
                        stage.shoot(name, stage.dialog());
                      }});
  pictures.push_back({"dialog_save", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.delegate.listTransfer().exportGrid();
                        stage.shoot(name, stage.dialog());
                      }});
  pictures.push_back({"menus", [](Stage& stage, const QString& name) {
                        for (QAction* action : stage.window.menuBar()->actions()) {
                          action->menu()->adjustSize();
                          stage.shoot(
                              name + QLatin1Char('_') + action->text().section(QLatin1Char(' '), 0, 0),
                              action->menu());
                        }
                      }});
}

void takeSizePictures(std::vector<Picture>& pictures) {
  pictures.push_back({"minimum_size", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.connectCamera();
                        stage.window.resize(stage.window.minimumSizeHint());
                        stage.shoot(name);
                      }});
  pictures.push_back({"huge_size", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.window.resize(2400, 1400);
                        stage.shoot(name);
                      }});
  pictures.push_back({"splash", [](Stage& stage, const QString& name) {
                        Splash splash(QStringLiteral("7.04"),
                                      firstImageThatLoads(stage.delegate.resourcesNamedAny(
                                          {QStringLiteral("ambrel_splash_mark.png")})));
                        stage.shoot(name, &splash);
                        Splash plain(QStringLiteral("7.04"), {});
                        stage.shoot(name + QStringLiteral("_without_mark"), &plain);
                      }});
}

int run(const QString& folder) {
  if (!QDir().mkpath(folder)) return 1;
  std::vector<Picture> pictures;
  takeListPictures(pictures);
  takeRowPictures(pictures);
  takeCameraPictures(pictures);
  takeBackupPictures(pictures);
  takeDialogPictures(pictures);
  takeSizePictures(pictures);
  for (const Picture& picture : pictures) {
    Stage stage(folder);
    picture.take(stage, QString::fromLatin1(picture.name));
  }
  std::printf("%lld pictures written\n",
              static_cast<long long>(QDir(folder).entryList({QStringLiteral("*.png")}).size()));
  return 0;
}

}  // namespace
}  // namespace ambrel::ui

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  ambrel::ui::applyApplicationAppearance(application);
  if (argc != 2) {
    std::fputs("usage: ambrel_gallery FOLDER\n", stderr);
    return 2;
  }
  return ambrel::ui::run(QDir(QString::fromLocal8Bit(argv[1])).absolutePath());
}
