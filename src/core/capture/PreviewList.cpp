// SPDX-License-Identifier: Apache-2.0
#include "core/capture/PreviewList.h"

#include <QFileInfo>
#include <utility>

#include "core/base/PathText.h"
#include "core/capture/PreviewWalk.h"

namespace ambrel {

PreviewList::PreviewList(Clock& clock, std::function<QString()> targetDir)
    : _clock(clock),
      _targetDir(std::move(targetDir)),
      _newestRefresh(std::make_shared<std::atomic<quint64>>(0)) {}

PreviewList::~PreviewList() {
  ++*_newestRefresh;  // nobody waits for a walk any more
}

void PreviewList::scheduleLatestCapturePreviewAtPath(const QString& path) {
  if (path.isEmpty()) return;
  _pendingPreviewPath = path;
  _clock.cancel(_debounce);
  _debounce = _clock.callAfter(kDebounce, this, [this] { showPendingLatestCapturePreview(); });
}

void PreviewList::showPendingLatestCapturePreview() {
  showPreviewPath(_pendingPreviewPath, ListRefresh::Yes);
}

void PreviewList::previewImageAtPath(const QString& path) {
  QMetaObject::invokeMethod(
      this, [this, path] { showPreviewPath(path, ListRefresh::Yes); }, Qt::QueuedConnection);
}

void PreviewList::showPreviewPath(const QString& path, ListRefresh refresh) {
  if (path.isEmpty()) return;
  _wantedPath = path;
  if (refresh == ListRefresh::Yes) refreshPreviewImageListAroundPath(path);
  Q_EMIT imageWanted(path);
}

void PreviewList::refreshPreviewImageListAroundPath(const QString& path) {
  const QString targetDir = _targetDir();
  const QString root = targetDir.isEmpty() ? path.section(QLatin1Char('/'), 0, -2) : targetDir;
  const quint64 number = ++*_newestRefresh;
  if (root.isEmpty()) {
    takeList({});
    return;
  }
  _walkThread.add(
      [this, number, root = ns_to_path(root), newest = _newestRefresh](SerialThread::Line& mainThread) {
        const auto superseded = [&] { return *newest != number; };
        const QStringList paths = previewablePhotosBelow(root, superseded);
        mainThread.tell([this, number, paths] {
          if (*_newestRefresh == number) takeList(paths);
        });
      });
}

void PreviewList::takeList(const QStringList& paths) {
  _previewImagePaths = paths;
  // Around what is wanted now: the operator may have stepped on meanwhile.
  const qint64 found = paths.lastIndexOf(_wantedPath);
  _previewIndex = found >= 0 ? found : paths.size() - 1;
  if (_currentPreviewPath == _wantedPath) updateFilenameLabel();
  Q_EMIT controlsStale();
}

void PreviewList::previewPreviousImage() {
  if (!hasPrevious()) return;
  --_previewIndex;
  showPreviewPath(_previewImagePaths[_previewIndex], ListRefresh::No);
}

void PreviewList::previewNextImage() {
  if (!hasNext()) return;
  ++_previewIndex;
  showPreviewPath(_previewImagePaths[_previewIndex], ListRefresh::No);
}

void PreviewList::imageLoaded(const QString& path) {
  _currentPreviewPath = path;
  updateFilenameLabel();
  Q_EMIT controlsStale();
}

void PreviewList::imageFailed(const QString&) {
  Q_EMIT controlsStale();
}

qint64 PreviewList::shownIndex() const {
  if (_currentPreviewPath == _wantedPath) return _previewIndex;
  // The operator has stepped on while it was loaded: it keeps its own place.
  const qint64 found = _previewImagePaths.lastIndexOf(_currentPreviewPath);
  return found >= 0 ? found : _previewIndex;
}

void PreviewList::updateFilenameLabel() {
  _filenameLabel = QStringLiteral("%1  (%2/%3)")
                       .arg(QFileInfo(_currentPreviewPath).fileName(), QString::number(shownIndex() + 1),
                            QString::number(_previewImagePaths.size()));
  Q_EMIT filenameLabelChanged();
}

bool PreviewList::finishRefresh(std::chrono::milliseconds limit) {
  return _walkThread.finish(limit);
}

}  // namespace ambrel
