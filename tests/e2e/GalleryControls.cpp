// SPDX-License-Identifier: Apache-2.0
#include <QApplication>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QEnterEvent>
#include <QMouseEvent>
#include <QThread>
#include <QToolTip>

#include "e2e/GalleryStage.h"

namespace ambrel::ui {
namespace {

// Until the fill has faded to what it becomes below the pointer.
void hover(AmbrelButton* button) {
  const QPointF middle = QRectF(button->rect()).center();
  QEnterEvent event(middle, middle, middle);
  QApplication::sendEvent(button, &event);
  for (int i = 0; i < 10; ++i) {
    QThread::msleep(20);
    QCoreApplication::processEvents();
  }
}

void press(AmbrelButton* button) {
  QMouseEvent event(QEvent::MouseButtonPress, QRectF(button->rect()).center(), button->mapToGlobal(QPointF()),
                    Qt::LeftButton, Qt::LeftButton, {});
  QApplication::sendEvent(button, &event);
}

// The tool tip of the widget, opened below it.
QWidget* openToolTip(QWidget* widget) {
  QToolTip::showText(widget->mapToGlobal(QPoint(10, widget->height() - 12)), widget->toolTip(), widget);
  for (QWidget* open : QApplication::topLevelWidgets())
    if (open->inherits("QTipLabel")) return open;
  qFatal("no tool tip is open");
}

void drag(NameTable* table, const QMimeData* what, QPoint place, Qt::DropAction action) {
  QDragEnterEvent event(place, action, what, Qt::LeftButton, {});
  QApplication::sendEvent(table->viewport(), &event);
}

void takeRowPictures(std::vector<Picture>& pictures) {
  pictures.push_back({"context_menu", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.select({1});
                        NameTable* table = stage.table();
                        const QPoint place = table->visualRect(table->model()->index(4, 1)).center();
                        QContextMenuEvent event(QContextMenuEvent::Mouse, place,
                                                table->viewport()->mapToGlobal(place));
                        QApplication::sendEvent(table->viewport(), &event);
                        table->rowMenu()->setActiveAction(table->rowMenu()->actions().at(3));
                        stage.shoot(name, nullptr, {table->rowMenu()});
                        table->rowMenu()->hide();
                      }});
  pictures.push_back({"editing_a_name", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.select({3});
                        stage.table()->edit(stage.table()->model()->index(3, 1));
                        stage.shoot(name);
                      }});
  pictures.push_back({"dragging_a_row", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.select({2});
                        NameTable* table = stage.table();
                        const std::unique_ptr<QMimeData> row(rowPayload(2));
                        drag(table, row.get(), {100, table->rowViewportPosition(6) + 1}, Qt::MoveAction);
                        stage.shoot(name);
                        drag(table, row.get(), {100, table->rowViewportPosition(11) + 200}, Qt::MoveAction);
                        stage.shoot(name + QStringLiteral("_to_the_end"));
                        drag(table, row.get(), table->visualRect(table->model()->index(6, 1)).center(),
                             Qt::CopyAction);
                        stage.shoot(name + QStringLiteral("_onto_another"));
                      }});
  pictures.push_back({"dragging_a_file", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        QMimeData file;
                        file.setUrls({QUrl::fromLocalFile(QStringLiteral("/home/kim/more.csv"))});
                        drag(stage.table(), &file, {100, 100}, Qt::CopyAction);
                        stage.shoot(name);
                      }});
}

void takeKeyboardPictures(std::vector<Picture>& pictures) {
  pictures.push_back({"focus", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.select({3});
                        PreviewPane* pane = stage.window.rightPane();
                        pane->updateControls(true, true);
                        const auto focused = [&](const char* what, QWidget* control) {
                          control->setFocus(Qt::TabFocusReason);
                          stage.shoot(name + QLatin1Char('_') + QLatin1String(what));
                        };
                        focused("search", stage.window.leftPane()->searchField());
                        focused("counter", stage.window.topPanel()->counterField());
                        focused("gear", stage.window.topPanel()->gearButton());
                        focused("add", stage.button(QStringLiteral("Add the search text as a new name")));
                        focused("filter", stage.button(QStringLiteral("Show: All")));
                        focused("table", stage.table());
                        focused("note", stage.window.leftPane()->noteField());
                        focused("note_indicator", stage.button(QStringLiteral("Edit the note")));
                        focused("reveal", stage.button(QStringLiteral("Open")));
                        focused("next", pane->nextButton());
                        stage.openSettings();
                        focused("tag", stage.button(QStringLiteral("FR")));
                        focused("reset", stage.button(QStringLiteral("↻ Reset workflow")));
                      }});
  pictures.push_back({"focus_drop_zone", [](Stage& stage, const QString& name) {
                        stage.window.findChild<AmbrelDropZone*>()->setFocus(Qt::TabFocusReason);
                        stage.shoot(name);
                      }});
}

void takePointerPictures(std::vector<Picture>& pictures) {
  pictures.push_back({"buttons", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.window.rightPane()->updateControls(true, true);
                        for (const char* title : {"Export", "Settings", "Next photo", "Open"})
                          hover(stage.button(QLatin1String(title)));
                        press(stage.button(QStringLiteral("Show: All")));
                        press(stage.button(QStringLiteral("Reconnect camera")));
                        stage.shoot(name);
                      }});
  pictures.push_back({"tool_tips", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.shoot(name, nullptr,
                                    {openToolTip(stage.button(QStringLiteral("Clear the search box")))});
                        stage.shoot(name + QStringLiteral("_long"), nullptr,
                                    {openToolTip(stage.button(QStringLiteral("Show: All")))});
                        QToolTip::hideText();
                      }});
}

void takeSettingsPictures(std::vector<Picture>& pictures) {
  pictures.push_back({"settings", [](Stage& stage, const QString& name) {
                        stage.fill(people());
                        stage.chooseFolder();
                        stage.openSettings();
                        stage.shoot(name);
                      }});
  pictures.push_back({"settings_without_tags", [](Stage& stage, const QString& name) {
                        stage.delegate.tags().manageSuffixes();
                        QDialog* dialog = stage.dialog();
                        for (QLineEdit* field : dialog->findChildren<QLineEdit*>())
                          field->clear();
                        for (AmbrelButton* button : dialog->findChildren<AmbrelButton*>())
                          if (button->text() == QLatin1String("Save")) button->click();
                        stage.openSettings();
                        stage.shoot(name);
                      }});
}

}  // namespace

void takeControlPictures(std::vector<Picture>& pictures) {
  takeRowPictures(pictures);
  takeKeyboardPictures(pictures);
  takePointerPictures(pictures);
  takeSettingsPictures(pictures);
}

}  // namespace ambrel::ui
