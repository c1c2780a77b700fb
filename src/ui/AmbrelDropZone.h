// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMimeData>
#include <QWidget>
#include <functional>

namespace ambrel::ui {

// The local files of a drag, in its order.
QStringList droppedPaths(const QMimeData& data);

// What stands in the table's place while the list is empty: invites a click or a dropped list file.
class AmbrelDropZone : public QWidget {
  Q_OBJECT
 public:
  explicit AmbrelDropZone(QWidget* parent = nullptr);

  std::function<void()> onClick;
  // Gets the dropped list files; whether it took them.
  std::function<bool(const QStringList& paths)> onDropPaths;

  // Invalid colours: gray, and the secondary label colour.
  void setBorderColor(const QColor& color);
  void setTextColor(const QColor& color);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  QColor _borderColor;
  QColor _textColor;
};

}  // namespace ambrel::ui
