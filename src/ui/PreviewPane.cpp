// SPDX-License-Identifier: Apache-2.0
#include "ui/PreviewPane.h"

#include "ui/Appearance.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

constexpr int kFolderSymbolSize = 18;
constexpr double kPillCornerRadius = 11;

}  // namespace

PreviewPane::PreviewPane(QWidget* parent)
    : Surface(parent),
      _preview(new PhotoView(this)),
      _previewDownloadedPill(makeDownloadedPill()),
      _previewFilenameLabel(new TextLabel(QStringLiteral("No preview yet"), systemFont(13),
                                          Palette().primaryTextColor(), this)),
      _previewPrevButton(makeStepButton(QStringLiteral("◀"), QStringLiteral("Previous photo"))),
      _previewNextButton(makeStepButton(QStringLiteral("▶"), QStringLiteral("Next photo"))),
      _previewRevealButton(new AmbrelButton(this)) {
  styleCardView();
  setMinimumWidth(layout::kRightPaneMinimum);
  _previewFilenameLabel->setAlignment(Qt::AlignCenter);
  _previewFilenameLabel->setElideMode(Qt::ElideMiddle);
  _previewRevealButton->setBorderless(true);
  _previewRevealButton->styleButton(QStringLiteral("Open"), {}, true);
  _previewRevealButton->applySymbol(Symbol::Folder, kFolderSymbolSize, Palette().brandColor());
  _previewRevealButton->setToolTip(QStringLiteral("Open this photo's folder in Finder"));
  connect(_previewPrevButton, &AmbrelButton::clicked, this, &PreviewPane::previousRequested);
  connect(_previewNextButton, &AmbrelButton::clicked, this, &PreviewPane::nextRequested);
  connect(_previewRevealButton, &AmbrelButton::clicked, this, &PreviewPane::revealRequested);
  updateControls(false, false);
}

AmbrelButton* PreviewPane::makeStepButton(const QString& glyph, const QString& name) {
  auto* button = new AmbrelButton(glyph, this);
  button->setAccessibleName(name);
  button->setToolTip(name);
  return button;
}

Surface* PreviewPane::makeDownloadedPill() {
  auto* pill = new Surface(this);
  pill->setFill(Palette().greenColor());
  pill->setOutline(kPillCornerRadius, {}, {});
  auto* text = new TextLabel(QStringLiteral("  Downloaded  "), systemFont(12, QFont::Bold), Qt::white, pill);
  text->setAlignment(Qt::AlignCenter);
  text->resize(layout::kDownloadedPill);
  pill->hide();
  return pill;
}

void PreviewPane::showPhoto(const QImage& photo, const QString& label) {
  _preview->setPhoto(photo);
  showLabel(label);
  _previewDownloadedPill->show();
}

void PreviewPane::showLabel(const QString& label) {
  _preview->setAccessibleDescription(label);
  _previewFilenameLabel->setText(label);
  _previewFilenameLabel->setToolTip(label);
}

void PreviewPane::updateControls(bool hasPrevious, bool hasNext) {
  const QColor color = Palette().blueColor();
  _previewPrevButton->styleButton(_previewPrevButton->text(), color, hasPrevious);
  _previewNextButton->styleButton(_previewNextButton->text(), color, hasNext);
}

void PreviewPane::resizeEvent(QResizeEvent*) {
  const layout::RightPane places = layout::rightPane(size());
  _preview->setGeometry(places.preview);
  _previewDownloadedPill->setGeometry(places.previewDownloadedPill);
  _previewFilenameLabel->setGeometry(places.filenameLabel);
  _previewPrevButton->setGeometry(places.prevButton);
  _previewNextButton->setGeometry(places.nextButton);
  _previewRevealButton->setGeometry(places.revealButton);
}

}  // namespace ambrel::ui
