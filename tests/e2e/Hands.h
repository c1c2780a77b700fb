// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPoint>
#include <QStringList>
#include <QWidget>

namespace ambrel {

// The operator's hands: keys and mouse of the X server, so that events take the road that real ones take.
// Every call returns once the events were made and the application has served what has arrived.
class Hands {
 public:
  void click(const QWidget* widget);
  // `place` within the widget, in points.
  void click(const QWidget* widget, QPoint place, int button = 1);
  void doubleClick(const QWidget* widget, QPoint place);
  // Presses at one place and releases at the other, slowly enough to be a drag.
  void drag(const QWidget* widget, QPoint from, QPoint to);
  void type(const QString& text);
  // As the X server calls it: "Down", "Return", "ctrl+v".
  void key(const QString& name);

 private:
  void run(const QStringList& arguments);
};

}  // namespace ambrel
