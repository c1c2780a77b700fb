// SPDX-License-Identifier: Apache-2.0
#include "ui/PreviewPane.h"

#include "ui/Appearance.h"
#include "ui/WindowLayout.h"

namespace ambrel::ui {
namespace {

constexpr double kPreviewCornerRadius = 12;

}  // namespace

PreviewPane::PreviewPane(QWidget* parent)
    : Surface(parent),
      _preview(new Surface(this)),
      _previewFilenameLabel(new TextLabel(QStringLiteral("No preview yet"), systemFont(13),
                                          Palette().primaryTextColor(), this)) {
  const Palette palette;
  styleCardView();
  setMinimumWidth(layout::kRightPaneMinimum);
  _preview->setFill(palette.cardBackgroundColor());
  _preview->setOutline(kPreviewCornerRadius, palette.previewBorderColor(), {});
  _previewFilenameLabel->setAlignment(Qt::AlignCenter);
}

void PreviewPane::resizeEvent(QResizeEvent*) {
  const layout::RightPane places = layout::rightPane(size());
  _preview->setGeometry(places.preview);
  _previewFilenameLabel->setGeometry(places.filenameLabel);
}

}  // namespace ambrel::ui
