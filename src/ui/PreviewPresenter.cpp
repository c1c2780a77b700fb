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
  connect(&_loader, &ImageLoader::failed, this, &PreviewPresenter::photoFailed);
  connect(&_pane, &PreviewPane::previousRequested, this, [this] { _list.previewPreviousImage(); });
  connect(&_pane, &PreviewPane::nextRequested, this, [this] { _list.previewNextImage(); });
  connect(_pane.preview(), &PhotoView::roomGrew, this, &PreviewPresenter::loadAgain);
}

void PreviewPresenter::load(const QString& path) {
  _loading = path;
  _loader.load(path, _pane.preview()->fit());
}

void PreviewPresenter::loadAgain() {
  // A photo on its way is not given up for the one that it replaces.
  load(_loading.isEmpty() ? _list.currentPreviewPath() : _loading);
}

void PreviewPresenter::photoLoaded(const QString& path, const QImage& photo) {
  if (path == _loading) _loading.clear();
  _list.imageLoaded(path);
  _pane.showPhoto(photo, _list.filenameLabel());
}

void PreviewPresenter::photoFailed(const QString& path) {
  if (path == _loading) _loading.clear();
  _list.imageFailed(path);
}

void PreviewPresenter::updateControls() {
  _pane.updateControls(_list.hasPrevious(), _list.hasNext());
}

}  // namespace ambrel::ui
