// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>
#include <atomic>
#include <functional>
#include <memory>

#include "core/base/Result.h"
#include "core/base/SerialThread.h"

namespace ambrel::ui {

// Decodes photos on a thread of its own, the newest request first. What was asked for before and has not
// begun is dropped, so that whoever steps through large photos sees each one that there was time for and ends
// at the right one.
class ImageLoader : public QObject {
  Q_OBJECT
 public:
  // Runs on the thread.
  using Decode = std::function<Result<QImage>(const QString& path, QSize fit)>;

  explicit ImageLoader(Decode decode);

  // Each request that is not dropped is answered by one of the signals, in the order of the requests. `fit`
  // is in pixels.
  void load(const QString& path, QSize fit);

 Q_SIGNALS:
  void loaded(const QString& path, const QImage& image);
  void failed(const QString& path, const QString& reason);

 private:
  Decode _decode;
  std::shared_ptr<std::atomic<quint64>> _newest = std::make_shared<std::atomic<quint64>>(0);
  SerialThread _thread;
};

}  // namespace ambrel::ui
