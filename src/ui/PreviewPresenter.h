// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/capture/PreviewList.h"
#include "ui/ImageLoader.h"
#include "ui/PreviewPane.h"

namespace ambrel::ui {

// Brings the photos that the preview's list asks for onto the pane, and the pane's buttons to the list.
class PreviewPresenter : public QObject {
  Q_OBJECT
 public:
  PreviewPresenter(PreviewList& list, PreviewPane& pane, ImageLoader::Decode decode);

 private:
  void load(const QString& path);
  void loadAgain();
  void photoLoaded(const QString& path, const QImage& photo);
  void photoFailed(const QString& path);
  void updateControls();

  PreviewList& _list;
  PreviewPane& _pane;
  QString _loading;  // asked of the loader last, empty once it has answered
  ImageLoader _loader;
};

}  // namespace ambrel::ui
