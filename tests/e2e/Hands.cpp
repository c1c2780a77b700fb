// SPDX-License-Identifier: Apache-2.0
#include "e2e/Hands.h"

#include <QApplication>
#include <QDropEvent>
#include <QKeyEvent>
#include <QProcess>
#include <QTimer>
#include <QWindow>
#include <gtest/gtest.h>
#include <memory>

#include "support/EventLoop.h"

namespace ambrel {
namespace {

using namespace std::chrono_literals;

constexpr auto kServed = 30s;
// The server stamps both presses, so nothing but a stalled server brings them this far apart.
constexpr int kDoubleClickMs = 5000;

QStringList moveTo(QPoint place) {
  return {QStringLiteral("mousemove"), QString::number(place.x()), QString::number(place.y())};
}

// What has reached the application's windows since this object was made.
class Arrivals : public QObject {
 public:
  Arrivals() { qApp->installEventFilter(this); }
  int buttonReleases = 0;
  int keys = 0;  // presses, those of shortcuts as well
  QString typed;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    const bool window = qobject_cast<QWindow*>(watched) != nullptr;
    if (event->type() == QEvent::ShortcutOverride) ++keys;
    if (window && event->type() == QEvent::MouseButtonRelease) ++buttonReleases;
    if (window && event->type() == QEvent::KeyPress) {
      ++keys;
      typed += static_cast<QKeyEvent*>(event)->text();
    }
    return false;
  }
};

// While a drag lasts the toolkit keeps the main thread in an event loop of its own, and it may take several
// moves of a slow application for one: so every step is made from within that loop, again and again, until
// the widget has heard of it.
class Dragging : public QObject {
 public:
  Dragging(QWidget* widget, QPoint from, QPoint to) : _widget(widget), _from(from), _to(to) {
    qApp->installEventFilter(this);
    connect(&_tool, &QProcess::finished, this, &Dragging::madeEvents);
    makeEvents(moveTo(at(_from)) + QStringList{QStringLiteral("mousedown"), QStringLiteral("1")});
  }
  bool isOver() const { return _step == Step::Over && _tool.state() == QProcess::NotRunning; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (watched != _widget) return false;
    const QEvent::Type type = event->type();
    if (type == QEvent::MouseButtonPress && _step == Step::Press) _step = Step::PickUp;
    if (type != QEvent::DragEnter && type != QEvent::DragMove) return false;
    const QPoint place = static_cast<QDropEvent*>(event)->position().toPoint();
    if (_step == Step::PickUp) _step = Step::Carry;
    if (_step == Step::Carry && place == _to) _step = Step::LetGo;
    return false;
  }

 private:
  enum class Step { Press, PickUp, Carry, LetGo, Over };

  QPoint at(QPoint place) const { return _widget->mapToGlobal(place); }
  void makeEvents(const QStringList& events) { _tool.start(QStringLiteral("xdotool"), events); }
  void madeEvents() {
    // Room for what was made to arrive.
    QTimer::singleShot(20ms, this, &Dragging::nextStep);
  }
  void nextStep() {
    ++_turn;
    switch (_step) {
      case Step::Press:
        return madeEvents();
      case Step::PickUp:
        return makeEvents(moveTo(at(_from + (_to - _from) * (1 + _turn % 3) / 6)));
      case Step::Carry:
        // Only a pointer that moves is told of.
        return makeEvents(moveTo(at(_to + QPoint(_turn % 2, 0))));
      case Step::LetGo:
        _step = Step::Over;
        return makeEvents(moveTo(at(_to)) + QStringList{QStringLiteral("mouseup"), QStringLiteral("1")});
      case Step::Over:
        return;
    }
  }

  QWidget* _widget;
  QPoint _from;
  QPoint _to;
  Step _step = Step::Press;
  int _turn = 0;
  QProcess _tool;
};

}  // namespace

void Hands::click(const QWidget* widget) {
  click(widget, widget->rect().center());
}

void Hands::click(const QWidget* widget, QPoint place, int button) {
  const Arrivals arrivals;
  make(moveTo(widget->mapToGlobal(place)) + QStringList{QStringLiteral("click"), QString::number(button)},
       [&] { return arrivals.buttonReleases >= 1; });
}

void Hands::doubleClick(const QWidget* widget, QPoint place) {
  const int usual = QApplication::doubleClickInterval();
  QApplication::setDoubleClickInterval(kDoubleClickMs);
  const Arrivals arrivals;
  make(moveTo(widget->mapToGlobal(place)) + QStringList{QStringLiteral("click"), QStringLiteral("--repeat"),
                                                        QStringLiteral("2"), QStringLiteral("--delay"),
                                                        QStringLiteral("40"), QStringLiteral("1")},
       [&] { return arrivals.buttonReleases >= 2; });
  QApplication::setDoubleClickInterval(usual);
}

void Hands::drag(QWidget* widget, QPoint from, QPoint to) {
  const Dragging dragging(widget, from, to);
  ASSERT_TRUE(runEventsUntil([&] { return dragging.isOver(); }, kServed)) << "the drag did not begin or end";
}

void Hands::type(const QString& text) {
  const Arrivals arrivals;
  make({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("5"), text},
       [&] { return arrivals.typed == text; });
}

void Hands::key(const QString& name) {
  const Arrivals arrivals;
  make({QStringLiteral("key"), name}, [&] { return arrivals.keys > 0; });
}

void Hands::make(const QStringList& events, const std::function<bool()>& served) {
  QProcess tool;
  tool.start(QStringLiteral("xdotool"), events);
  const bool made = runEventsUntil([&] { return tool.state() == QProcess::NotRunning; }, kServed);
  ASSERT_TRUE(made && tool.exitCode() == 0)
      << events.join(QLatin1Char(' ')).toStdString() << ' ' << tool.readAllStandardError().toStdString();
  ASSERT_TRUE(runEventsUntil(served, kServed))
      << "not heard of: " << events.join(QLatin1Char(' ')).toStdString();
}

}  // namespace ambrel
