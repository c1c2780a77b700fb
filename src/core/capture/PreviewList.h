// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>

#include "core/base/Clock.h"
#include "core/base/SerialThread.h"

namespace ambrel {

// Which photo the preview shows, and its place among all photos that can be shown, oldest first. The list is
// made anew for each newest photo, on a thread of its own; stepping leaves it as it is. The view loads and
// shows what imageWanted() names and answers with imageLoaded() or imageFailed().
class PreviewList : public QObject {
  Q_OBJECT
 public:
  // A burst shows its last photo only.
  static constexpr std::chrono::milliseconds kDebounce{450};

  enum class ListRefresh { No, Yes };

  PreviewList(Clock& clock, std::function<QString()> targetDir);
  ~PreviewList() override;

  // For every photo filed.
  void scheduleLatestCapturePreviewAtPath(const QString& path);
  void showPendingLatestCapturePreview();
  void showPreviewPath(const QString& path, ListRefresh refresh);
  // From any thread; shows a photo with a list refresh.
  void previewImageAtPath(const QString& path);
  void previewPreviousImage();
  void previewNextImage();

  // The view's answers, in the order of the requests. A photo that has been stepped past meanwhile is shown
  // all the same, so that a held key shows photos passing by.
  void imageLoaded(const QString& path);
  void imageFailed(const QString& path);

  const QStringList& previewImagePaths() const { return _previewImagePaths; }
  qint64 previewIndex() const { return _previewIndex; }  // -1 when the list is empty
  QString currentPreviewPath() const { return _currentPreviewPath; }
  bool hasPrevious() const { return _previewIndex >= 1 && !_previewImagePaths.isEmpty(); }
  bool hasNext() const { return _previewIndex >= 0 && _previewIndex < _previewImagePaths.size() - 1; }
  // "Ann_0001.JPG  (3/17)", empty before the first photo.
  QString filenameLabel() const { return _filenameLabel; }

  // Waits until the list that was asked for is there, for at most `limit`; whether it is.
  bool finishRefresh(std::chrono::milliseconds limit);

 Q_SIGNALS:
  void imageWanted(const QString& path);
  void filenameLabelChanged();
  void controlsStale();

 private:
  void refreshPreviewImageListAroundPath(const QString& path);
  void takeList(const QStringList& paths);
  qint64 shownIndex() const;
  void updateFilenameLabel();

  Clock& _clock;
  std::function<QString()> _targetDir;
  QStringList _previewImagePaths;
  qint64 _previewIndex = -1;
  QString _wantedPath;  // asked of the view last
  QString _currentPreviewPath;
  QString _pendingPreviewPath;
  QString _filenameLabel;
  Clock::TimerId _debounce = Clock::kNoTimer;
  std::shared_ptr<std::atomic<quint64>> _newestRefresh;
  SerialThread _walkThread;
};

}  // namespace ambrel
