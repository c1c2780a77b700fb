// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QColor>

namespace ambrel::ui {

// Every colour of the window. The dark values are kept but dormant: the window is always light.
class Palette {
 public:
  enum class Mode { Light, Dark };
  explicit Palette(Mode mode = Mode::Light) : _mode(mode) {}

  QColor brandColor() const;
  QColor brandDarkColor() const;
  QColor greenColor() const;
  QColor redColor() const;
  QColor blueColor() const { return brandColor(); }
  QColor grayColor() const;
  QColor orangeColor() const;
  QColor yellowColor() const { return orangeColor(); }  // deliberately the same
  QColor softPanelColor() const;
  QColor softBorderColor() const;
  QColor appBackgroundColor() const;
  QColor cardBackgroundColor() const;
  QColor fieldBackgroundColor() const;
  QColor primaryTextColor() const { return labelColor(); }
  QColor previewBorderColor() const;

  // Fills of the storage card.
  QColor storageUnknownFill() const;
  QColor storageCriticalFill() const;
  QColor storageLowFill() const;

  // The colours that a desktop platform usually supplies.
  static QColor labelColor();
  static QColor secondaryLabelColor();
  static QColor tertiaryLabelColor();
  static QColor systemLightGray();
  static QColor systemGray();
  static QColor selectedContentBackground();
  static QColor white(double level);

 private:
  QColor either(const QColor& light, const QColor& dark) const { return _mode == Mode::Dark ? dark : light; }
  Mode _mode;
};

// `color` mixed with `fraction` (0 to 1) of `other`; the alpha is mixed alike.
QColor blended(const QColor& color, double fraction, const QColor& other);
QColor withOpacity(QColor color, double opacity);

}  // namespace ambrel::ui
