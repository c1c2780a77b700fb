// SPDX-License-Identifier: Apache-2.0
#include "window/PreviewBench.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QSet>
#include <cstdio>
#include <filesystem>
#include <jpeglib.h>
#include <random>

#include "core/base/SystemClock.h"
#include "core/capture/PreviewList.h"
#include "support/EventLoop.h"
#include "ui/PhotoDecoder.h"
#include "ui/PreviewPresenter.h"
#include "unit/ui/SampleDng.h"

namespace ambrel::bench {
namespace {

constexpr QSize kView{1200, 900};
constexpr int kRounds = 9;

// Shapes and grain, so that the file is as large as a camera's.
QImage subject(QSize size) {
  QImage image(size, QImage::Format_RGB32);
  std::minstd_rand random(7);
  for (int y = 0; y < size.height(); ++y) {
    auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < size.width(); ++x) {
      const auto grain = static_cast<int>(random() % 24);
      line[x] = qRgb((x / 16 + grain) & 0xff, (y / 16 + grain) & 0xff, ((x + y) / 32 + grain) & 0xff);
    }
  }
  return image;
}

// The library's own decoding at a quarter of the size.
QSize decodeScaled(const QString& path) {
  const QByteArray bytes = contents(path);
  jpeg_decompress_struct decoder = {};
  jpeg_error_mgr errors = {};
  decoder.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&decoder);
  jpeg_mem_src(&decoder, reinterpret_cast<const unsigned char*>(bytes.constData()),
               static_cast<unsigned long>(bytes.size()));
  jpeg_read_header(&decoder, TRUE);
  decoder.scale_num = 1;
  decoder.scale_denom = 4;
  decoder.out_color_space = JCS_EXT_BGRX;
  jpeg_start_decompress(&decoder);
  QImage image(static_cast<int>(decoder.output_width), static_cast<int>(decoder.output_height),
               QImage::Format_RGB32);
  while (decoder.output_scanline < decoder.output_height) {
    JSAMPROW line = image.scanLine(static_cast<int>(decoder.output_scanline));
    jpeg_read_scanlines(&decoder, &line, 1);
  }
  jpeg_finish_decompress(&decoder);
  jpeg_destroy_decompress(&decoder);
  return image.size();
}

void measureJpeg(Goals& goals, const QString& path, const char* what) {
  std::vector<double> ours;
  std::vector<double> limit;
  for (int round = 0; round < kRounds; ++round) {
    limit.push_back(millisecondsOf([&] { require(decodeScaled(path).width() >= kView.width(), "limit"); }));
    QSize shown;
    ours.push_back(millisecondsOf([&] {
      const Result<QImage> photo = ui::decodePhoto(path, kView);
      require(photo.ok(), "not decoded");
      shown = photo.value().size();
    }));
    require(shown.width() == kView.width() || shown.height() == kView.height(), "not the view's size");
  }
  goals.atMostTimes(what, ours, "libjpeg-turbo at 1/4", limit, 1.15);
}

void measureRaw(Goals& goals, const QString& folder) {
  const QString path = folder + QStringLiteral("/photo.dng");
  QFile file(path);
  const QSize preview(1620, 1080);
  const ui::SampleDng dng(contents(writePhoto(folder, preview)), static_cast<quint16>(preview.width()),
                          static_cast<quint16>(preview.height()));
  require(file.open(QIODevice::WriteOnly) && file.write(dng.bytes()) == dng.bytes().size(), "no raw file");
  file.close();
  std::vector<double> times(kRounds);
  for (double& time : times) {
    time = millisecondsOf([&] {
      const Result<QImage> photo = ui::decodePhoto(path, kView);
      require(photo.ok() && photo.value().width() == kView.width(), "not decoded");
    });
  }
  goals.atMost("raw file, embedded preview", times, 15);
}

// The arrow key held down: photos stepped through as fast as it repeats, each shown as it comes.
void measureStepping(Goals& goals, const QString& photo, const QString& folder) {
  constexpr int kPhotos = 60;
  require(QDir().mkpath(folder), "no folder");
  for (int i = 0; i < kPhotos; ++i)
    std::filesystem::create_hard_link(photo.toStdString(),
                                      QStringLiteral("%1/%2.jpg").arg(folder).arg(i).toStdString());
  ui::PreviewPane pane(nullptr);
  pane.resize(kView + QSize(22, 52));
  pane.show();
  SystemClock clock;
  PreviewList list(clock, [folder] { return folder; });
  const ui::PreviewPresenter presenter(list, pane, ui::decodePhoto);
  const auto show = [&](const QString& path, int place) {
    const QString label = QStringLiteral("(%1/%2)").arg(place).arg(kPhotos);
    list.showPreviewPath(path, PreviewList::ListRefresh::Yes);
    require(runEventsUntil([&] { return pane.label().endsWith(label); }), "no preview");
  };
  list.showPreviewPath(folder + QStringLiteral("/0.jpg"), PreviewList::ListRefresh::Yes);
  require(runEventsUntil([&] { return list.previewImagePaths().size() == kPhotos; }), "no list");
  show(list.previewImagePaths().first(), 1);
  QSet<QString> seen;
  QObject::connect(&list, &PreviewList::filenameLabelChanged, [&] { seen.insert(list.filenameLabel()); });
  using std::chrono::steady_clock;
  const Heartbeat heartbeat;
  const QString last = QStringLiteral("(%1/%1)").arg(kPhotos);
  auto next = steady_clock::now();
  const bool arrived = runEventsUntil([&] {
    if (list.hasNext() && steady_clock::now() >= next) {
      next += std::chrono::milliseconds(33);
      list.previewNextImage();
    }
    return pane.label().endsWith(last);
  });
  require(arrived && seen.size() > 3, "photos are missing");
  goals.atMost("longest gap while stepping, 45 MP", static_cast<double>(heartbeat.longestGap().count()), 16);
  goals.mention("  photos seen of 59 steps", static_cast<double>(seen.size()), "");
}

}  // namespace

QByteArray contents(const QString& path) {
  QFile file(path);
  require(file.open(QIODevice::ReadOnly), "no photo");
  return file.readAll();
}

QString writePhoto(const QString& folder, QSize size) {
  const QString path = QStringLiteral("%1/%2.jpg").arg(folder).arg(size.width());
  QImageWriter writer(path, "jpeg");
  writer.setQuality(92);
  require(writer.write(subject(size)), "no photo");
  return path;
}

void measurePreview(Goals& goals, const QString& folder) {
  ui::allowLargePhotos();
  const QString large = writePhoto(folder, {8192, 5464});
  measureJpeg(goals, writePhoto(folder, {6000, 4000}), "JPEG of 24 megapixels");
  measureJpeg(goals, large, "JPEG of 45 megapixels");
  measureRaw(goals, folder);
  measureStepping(goals, large, folder + QStringLiteral("/steps"));
}

}  // namespace ambrel::bench
