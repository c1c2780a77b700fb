// SPDX-License-Identifier: Apache-2.0
#include "e2e/GalleryStage.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

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
                        stage.search(QStringLiteral("an"));
                        stage.shoot(name);
                      }});
  pictures.push_back({"searching_in_vain", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.search(QStringLiteral("Quentin, who has not signed up for any of the days"));
                        stage.shoot(name);
                      }});
  pictures.push_back({"filtered_and_sorted", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.delegate.list().cycleCaptureFilter();
                        stage.delegate.list().cycleSortMode();
                        stage.shoot(name);
                      }});
  pictures.push_back({"remaining_only", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.delegate.list().cycleCaptureFilter();
                        stage.delegate.list().cycleCaptureFilter();
                        stage.refresh();
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
  pictures.push_back({"scripts_and_emoji", [](Stage& stage, const QString& name) {
                        stage.fill(
                            {{"محمد بن عبد الله", "يجلس في الصف الأول", "2", "1"},
                             {"שרה כהן (late)", "", "0", ""},
                             {"山田 花子", "前列", "1", ""},
                             {"สมหญิง ใจดี", "", "0", ""},
                             {"김민준", "", "0", ""},
                             {"👩‍👩‍👧 Family Ng 🎓🎓", "👍🏽", "3", "1"},
                             {"Þórður Ægisson", "", "0", ""},
                             {"Ŵ̈ẍ̂ stacked", "", "0", ""},
                             {"two\nlines", "", "0", ""},
                             {"   blanks around   ", "", "0", ""},
                             {"नेहा शर्मा", "", "1482", ""},
                             {"محمد بن عبد الله بن عبد الرحمن بن عبد العزيز بن محمد بن سعود بن مقرن بن مرخان",
                              "", "0", ""}});
                        stage.select({0});
                        stage.shoot(name);
                        stage.select({11});
                        stage.shoot(name + QStringLiteral("_long_name"));
                      }});
}

void takePreviewPictures(std::vector<Picture>& pictures) {
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
  pictures.push_back(
      {"preview_upright", [](Stage& stage, const QString& name) {
         stage.fill(people());
         PreviewPane* pane = stage.window.rightPane();
         pane->showPhoto(
             portrait(QSize(2000, 3000)),
             QStringLiteral("Zoë Brontë-van der Westhuizen-Featherstonehaugh the Younger of Upper "
                            "Wallop_FR_0012.JPG  (12/12)"));
         pane->updateControls(true, false);
         stage.shoot(name);
       }});
  pictures.push_back({"preview_small", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.window.rightPane()->showPhoto(portrait(QSize(160, 120)),
                                                            QStringLiteral("Anna_0001.JPG  (1/1)"));
                        stage.shoot(name);
                      }});
}

void takeCameraPictures(std::vector<Picture>& pictures) {
  pictures.push_back({"connecting", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.delegate.connectCameraManual();
                        stage.shoot(name);
                        stage.openSettings();
                        stage.shoot(name + QStringLiteral("_settings"));
                      }});
  pictures.push_back({"watching", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.connectCamera();
                        stage.shoot(name);
                      }});
  pictures.push_back({"counting_high", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.delegate.counterTextDidChange(QStringLiteral("1234567890"));
                        stage.refresh();
                        stage.shoot(name);
                      }});
  pictures.push_back({"auto_connect_off", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.delegate.toggleAutoConnect();
                        stage.refresh();
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
  pictures.push_back({"alert_while_shooting", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.connectCamera();
                        stage.setFreeSpace(9 * kGiB);
                        stage.window.rightPane()->showPhoto(
                            portrait(QSize(1500, 1000)), QStringLiteral("Anna Kowalska_0005.JPG  (31/31)"));
                        stage.delegate.list().editableGrid().setCaptured(5, 0);
                        stage.shoot(name, nullptr, {stage.dialog()});
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
      {"backup_far_behind",
       {.enabled = true, .dir = folder, .queued = 123456, .offline = true, .batchTotal = 123456}},
  };
  for (const auto& [name, state] : states) {
    pictures.push_back({name, [state = state](Stage& stage, const QString& file) {
                          stage.fill(people());
                          stage.chooseFolder();
                          stage.window.topPanel()->showBackup(backupCardLook(state));
                          stage.window.settingsPopover()->showBackup(state.dir, backupButtonLook(state),
                                                                     backupPopUp(state));
                          stage.openSettings();
                          stage.shoot(file);
                        }});
  }
  pictures.push_back({"backup_menu", [folder](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        const BackupState state{.enabled = true, .dir = folder};
                        stage.window.settingsPopover()->showBackup(folder, backupButtonLook(state),
                                                                   backupPopUp(state));
                        stage.openSettings();
                        stage.button(backupButtonLook(state).title)->click();
                        QMenu* menu = stage.window.settingsPopover()->backupMenu();
                        stage.shoot(name, nullptr, {menu});
                        menu->setActiveAction(menu->actions().last());
                        stage.shoot(name + QStringLiteral("_alone"), menu);
                      }});
}

void takeSizePictures(std::vector<Picture>& pictures) {
  pictures.push_back({"minimum_size", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.connectCamera();
                        stage.window.resize(stage.window.minimumSizeHint());
                        stage.shoot(name);
                        stage.openSettings();
                        stage.shoot(name + QStringLiteral("_settings"));
                      }});
  pictures.push_back({"minimum_size_empty", [](Stage& stage, const QString& name) {
                        stage.window.resize(stage.window.minimumSizeHint());
                        stage.shoot(name);
                      }});
  pictures.push_back({"divider_at_its_ends", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.window.splitView()->setSizes({1, 10000});
                        stage.shoot(name + QStringLiteral("_left"));
                        stage.window.splitView()->setSizes({10000, 1});
                        stage.shoot(name + QStringLiteral("_right"));
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

}  // namespace

void takeWindowPictures(std::vector<Picture>& pictures) {
  takeListPictures(pictures);
  takePreviewPictures(pictures);
  takeCameraPictures(pictures);
  takeBackupPictures(pictures);
  takeSizePictures(pictures);
}

}  // namespace ambrel::ui
