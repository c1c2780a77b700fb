// SPDX-License-Identifier: Apache-2.0
#include "ui/PreviewPresenter.h"

namespace ambrel::ui {

PreviewPresenter::PreviewPresenter(PreviewList& list, PreviewPane& pane, ImageLoader::Decode decode)
    : _list(list), _pane(pane), _loader(std::move(decode)) {
  connect(&_list, &PreviewList::imageWanted, this, &PreviewPresenter::load);
  connect(&_list, &PreviewList::filenameLabelChanged, this,
          [this] { _pane.showLabel(_list.filenameLabel()); });
  connect(&_list, &PreviewList::controlsStale, this, &PreviewPresenter::updateControls);
  connect(&_loader, &ImageLoader::loaded, this, &PreviewPresenter::photoLoaded);
  connect(&_loader, &ImageLoader::failed, this, [this](const QString& path) { _list.imageFailed(path); });
  connect(&_pane, &PreviewPane::previousRequested, this, [this] { _list.previewPreviousImage(); });
  connect(&_pane, &PreviewPane::nextRequested, this, [this] { _list.previewNextImage(); });
  connect(_pane.preview(), &PhotoView::roomGrew, this, [this] { load(_list.currentPreviewPath()); });
}

void PreviewPresenter::load(const QString& path) {
  _loader.load(path, _pane.preview()->fit());
}

void PreviewPresenter::photoLoaded(const QString& path, const QImage& photo) {
  _list.imageLoaded(path);
  // Somebody may have stepped on; then the list does not take the photo, and its name must not stand below
  // another one.
  if (_list.currentPreviewPath() == path) _pane.showPhoto(photo, _list.filenameLabel());
}

void PreviewPresenter::updateControls() {
  _pane.updateControls(_list.hasPrevious(), _list.hasNext());
}

}  // namespace ambrel::ui
