// SPDX-License-Identifier: Apache-2.0
#include <QAbstractItemView>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>

#include "e2e/GalleryStage.h"
#include "support/EventLoop.h"

namespace ambrel::ui {
namespace {

void nobodyHears(const Answer&) {}

void takeQuestionPictures(std::vector<Picture>& pictures) {
  pictures.push_back({"dialog_import", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.dialogs().ask(
                            {QStringLiteral("Replace current list?"),
                             QStringLiteral("Importing replaces every name and note currently "
                                            "in the list. Use Export first if you want to keep "
                                            "them."),
                             {QStringLiteral("Replace"), QStringLiteral("Cancel")}},
                            nobodyHears);
                        stage.shoot(name, stage.dialog());
                      }});
  pictures.push_back({"dialog_note", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.delegate.listEditing().ctxEditNote(3);
                        stage.shoot(name, stage.dialog());
                      }});
  pictures.push_back({"dialog_note_long_name", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.delegate.listEditing().ctxEditNote(9);
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
                        QDialog* dialog = stage.dialog();
                        for (QCheckBox* box : dialog->findChildren<QCheckBox*>().first(2))
                          box->setChecked(true);
                        dialog->findChildren<QCheckBox*>().at(1)->setFocus(Qt::TabFocusReason);
                        stage.shoot(name + QStringLiteral("_checked"), dialog);
                      }});
  pictures.push_back({"dialog_move_onto", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.delegate.folderRename().promptMoveFromRow(0, QStringLiteral("Chiara Rossi"));
                        stage.shoot(name, nullptr, {stage.dialog()});
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
  pictures.push_back(
      {"dialog_backup_paused", [](Stage& stage, const QString& name) {
         stage.dialogs().showAlert(
             QStringLiteral("Backup Paused"),
             backupPausedMessage(137,
                                 QStringLiteral("/media/kim/Backup drive/Summer school/Zoë Brontë-van der "
                                                "Westhuizen-Featherstonehaugh: Input/output error")),
             {});
         stage.shoot(name, stage.dialog());
       }});
  pictures.push_back(
      {"dialog_unbroken_path", [](Stage& stage, const QString& name) {
         stage.dialogs().showAlert(
             QStringLiteral("Rename Failed"),
             QStringLiteral("Could not move "
                            "/media/kim/AVeryLongNameOfAFolderThatHasNoBlankAnywhereSoThatItCannotBeBroken/"
                            "Smith_Jones_twins_0001.JPG."),
             {});
         stage.shoot(name, stage.dialog());
       }});
  pictures.push_back(
      {"dialog_update", [](Stage& stage, const QString& name) {
         stage.dialogs().ask(
             {QStringLiteral("Update available: 7.10"),
              QStringLiteral("You have 7.04. Download the new version? It opens in your browser; "
                             "then drag it to Applications to replace this one."),
              {QStringLiteral("Download"), QStringLiteral("Later")}},
             nobodyHears);
         stage.shoot(name, stage.dialog());
       }});
}

void takeChooserPictures(std::vector<Picture>& pictures) {
  const auto fill = [](const QString& folder) {
    for (const char* name : {"Autumn fair", "Graduation 2025", "Summer school"})
      QDir(folder).mkpath(QLatin1String(name));
    for (const char* name : {"class of 2026.csv", "staff.csv"}) {
      QFile file(QDir(folder).filePath(QLatin1String(name)));
      if (!file.open(QIODevice::WriteOnly)) qFatal("cannot write %s", name);
    }
  };
  const auto shootFilled = [fill](Stage& stage, const QString& name) {
    const QString folder = stage.home() + QStringLiteral("/Pictures");
    fill(folder);
    auto* chooser = qobject_cast<QFileDialog*>(stage.dialog());
    chooser->setDirectory(folder);
    // The toolkit remembers the home of the first chooser, which is gone.
    chooser->setSidebarUrls({QUrl(QStringLiteral("file:")), QUrl::fromLocalFile(stage.home())});
    const auto* list = chooser->findChild<QAbstractItemView*>(QStringLiteral("treeView"));
    const auto firstName = [list] { return list->model()->index(0, 0, list->rootIndex()).data().toString(); };
    if (!runEventsUntil([&] { return firstName() == QLatin1String("Autumn fair"); }))
      qFatal("the folder is not listed");
    stage.shoot(name, chooser);
  };
  pictures.push_back({"dialog_chooser", [shootFilled](Stage& stage, const QString& name) {
                        stage.delegate.selectFolder();
                        shootFilled(stage, name);
                      }});
  pictures.push_back({"dialog_open", [shootFilled](Stage& stage, const QString& name) {
                        stage.delegate.listTransfer().loadCSV();
                        shootFilled(stage, name);
                      }});
  pictures.push_back({"dialog_save", [shootFilled](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.delegate.listTransfer().exportGrid();
                        shootFilled(stage, name);
                      }});
}

void takeMenuPictures(std::vector<Picture>& pictures) {
  pictures.push_back({"menus", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        for (QAction* action : stage.window.menuBar()->actions()) {
                          QMenuBar* bar = stage.window.menuBar();
                          QMenu* menu = action->menu();
                          bar->setActiveAction(action);
                          menu->popup(bar->mapToGlobal(bar->actionGeometry(action).bottomLeft()));
                          menu->setActiveAction(menu->actions().last());
                          stage.shoot(
                              name + QLatin1Char('_') + action->text().section(QLatin1Char(' '), 0, 0),
                              nullptr, {menu});
                          menu->hide();
                        }
                      }});
}

}  // namespace

void takeDialogPictures(std::vector<Picture>& pictures) {
  takeQuestionPictures(pictures);
  takeChooserPictures(pictures);
  takeMenuPictures(pictures);
}

}  // namespace ambrel::ui
