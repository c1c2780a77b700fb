// SPDX-License-Identifier: Apache-2.0
#include "ui/Splash.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QImageReader>
#include <QPainter>
#include <QScreen>
#include <utility>

#include "ui/Appearance.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

constexpr QSize kSplashSize{500, 380};
constexpr double kSplashCornerRadius = 20;

void drawCentred(QPainter& painter, const QRect& place, const QString& text, const QFont& font,
                 double opacity) {
  painter.setFont(font);
  painter.setPen(withOpacity(Qt::white, opacity));
  painter.drawText(place, Qt::AlignCenter | Qt::TextSingleLine, text);
}

}  // namespace

SplashPlaces splashPlaces(bool withMark) {
  const auto place = [](int x, int y, int width, int height) {
    return layout::fromBottom(kSplashSize.height(), x, y, width, height);
  };
  return {withMark ? place(165, 168, 170, 170) : QRect(), place(20, withMark ? 112 : 190, 460, 42),
          place(20, withMark ? 82 : 160, 460, 22), place(20, 20, 460, 18)};
}

QImage firstImageThatLoads(const QStringList& files) {
  for (const QString& file : files) {
    // Told of no format, the toolkit would ask every picture plug-in that there is.
    QImageReader reader(file, QFileInfo(file).suffix().toLatin1());
    reader.setAutoDetectImageFormat(false);
    QImage image;
    if (reader.read(&image)) return image;
  }
  return {};
}

Splash::Splash(const QString& displayVersion, const QImage& mark)
    : QWidget(nullptr, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      _displayVersion(displayVersion),
      _mark(mark) {
  setAttribute(Qt::WA_TranslucentBackground);
  // Closing it must not count as closing the application's last window.
  setAttribute(Qt::WA_QuitOnClose, false);
  setFixedSize(kSplashSize);
}

void Splash::showCentred() {
  const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
  move(screen.center() - rect().center());
  show();
  raise();
  activateWindow();
}

void Splash::paintEvent(QPaintEvent*) {
  if (!std::exchange(_paintedBefore, true))
    QMetaObject::invokeMethod(this, &Splash::painted, Qt::QueuedConnection);
  QPainter painter(this);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
  painter.setPen(Qt::NoPen);
  painter.setBrush(Palette().brandColor());
  painter.drawRoundedRect(rect(), kSplashCornerRadius, kSplashCornerRadius);

  const SplashPlaces places = splashPlaces(!_mark.isNull());
  if (!_mark.isNull()) {
    QRect place(QPoint(0, 0), _mark.size().scaled(places.mark.size(), Qt::KeepAspectRatio));
    place.moveCenter(places.mark.center());
    // Scaled to the screen's pixels first: painting a much larger picture directly loses edges.
    const QSize pixels = place.size() * devicePixelRatioF();
    painter.drawImage(place, _mark.scaled(pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
  }
  drawCentred(painter, places.title, QStringLiteral("Ambrel Photo Tether"), systemFont(30, QFont::Bold), 1);
  drawCentred(painter, places.line, QStringLiteral("Tethered capture for Canon cameras"), systemFont(14),
              0.75);
  drawCentred(painter, places.version, QStringLiteral("Version %1").arg(_displayVersion), systemFont(11),
              0.55);
}

}  // namespace ambrel::ui
