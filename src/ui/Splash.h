// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QWidget>

namespace ambrel::ui {

// The window shown while the application starts.
class Splash : public QWidget {
  Q_OBJECT
 public:
  // `mark`: null when there is no picture; the texts then stand higher.
  Splash(const QString& displayVersion, const QImage& mark);

  // Centred on the screen, above normal windows.
  void showCentred();

 Q_SIGNALS:
  void painted();  // for the first time; from here on nothing happens before the splash is closed

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QString _displayVersion;
  QImage _mark;
  bool _paintedBefore = false;
};

struct SplashPlaces {
  QRect mark, title, line, version;
};
SplashPlaces splashPlaces(bool withMark);

// The first of the picture files that loads; null when none does.
QImage firstImageThatLoads(const QStringList& files);

}  // namespace ambrel::ui
