// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QPoint>
#include <QStringList>
#include <QWidget>
#include <functional>

namespace ambrel {

// The operator's hands: keys and mouse of the X server, so that events take the road that real ones take.
// Every call returns once the application has served the events, however long that takes.
class Hands {
 public:
  void click(const QWidget* widget);
  // `place` within the widget, in points.
  void click(const QWidget* widget, QPoint place, int button = 1);
  void doubleClick(const QWidget* widget, QPoint place);
  // Picks up what lies at one place and lets go of it at the other, not before the widget has been told of
  // the drag at either.
  void drag(QWidget* widget, QPoint from, QPoint to);
  // Letters without accents.
  void type(const QString& text);
  // As the X server calls it: "Down", "Return", "ctrl+v".
  void key(const QString& name);

 private:
  // Has the server make the events, and waits until `served`.
  void make(const QStringList& events, const std::function<bool()>& served);
};

}  // namespace ambrel
