// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/AmbrelButton.h"
#include "ui/PhotoView.h"
#include "ui/Surface.h"
#include "ui/TextLabel.h"

namespace ambrel::ui {

// The right pane: the photo just taken, and the way to the photos around it.
class PreviewPane : public Surface {
  Q_OBJECT
 public:
  explicit PreviewPane(QWidget* parent);

  PhotoView* preview() const { return _preview; }
  AmbrelButton* previousButton() const { return _previewPrevButton; }
  AmbrelButton* nextButton() const { return _previewNextButton; }
  AmbrelButton* revealButton() const { return _previewRevealButton; }
  QString label() const { return _previewFilenameLabel->text(); }

  void showPhoto(const QImage& photo, const QString& label);
  void showLabel(const QString& label);
  // Which of the buttons have something to do.
  void updateControls(bool hasPrevious, bool hasNext);

 Q_SIGNALS:
  void previousRequested();
  void nextRequested();
  void revealRequested();

 protected:
  void resizeEvent(QResizeEvent* event) override;

 private:
  AmbrelButton* makeStepButton(const QString& glyph, const QString& name);
  Surface* makeDownloadedPill();

  PhotoView* _preview;
  Surface* _previewDownloadedPill;
  TextLabel* _previewFilenameLabel;
  AmbrelButton* _previewPrevButton;
  AmbrelButton* _previewNextButton;
  AmbrelButton* _previewRevealButton;
};

}  // namespace ambrel::ui
