// SPDX-License-Identifier: Apache-2.0
#include "soak/Meter.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <malloc.h>
#include <string>
#include <unistd.h>
#include <utility>

namespace ambrel::soak {
namespace {

constexpr double kBytesPerMegabyte = 1 << 20;

std::filesystem::path processFolder(pid_t process) {
  return "/proc/" + (process == 0 ? std::string("self") : std::to_string(process));
}

}  // namespace

// What it keeps is allocated beforehand, so that measuring does not show in what is measured.
Meter::Meter(std::chrono::milliseconds length, double hoursOfTheDay)
    : _hoursPerMillisecond(hoursOfTheDay / static_cast<double>(length.count())) {
  const auto samples = static_cast<std::size_t>(2 * length / kPeriod) + 200;
  for (Series* series : {&_application, &_applicationInUse, &_worker, &_longestWorker})
    series->points.assign(samples, {});
  for (Series* series : {&_application, &_applicationInUse, &_worker, &_longestWorker})
    series->points.clear();
  _clock.start();
}

std::optional<double> Meter::megabytes(pid_t process) {
  std::ifstream file(processFolder(process) / "statm");
  double total = 0;
  double resident = 0;
  if (!(file >> total >> resident)) return std::nullopt;
  return resident * static_cast<double>(::sysconf(_SC_PAGESIZE)) / kBytesPerMegabyte;
}

int Meter::descriptors(pid_t process) {
  int count = 0;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(processFolder(process) / "fd", error), end;
       !error && entry != end; entry.increment(error))
    ++count;
  return count - (process == 0 ? 1 : 0);  // the one that looks
}

void Meter::tick(pid_t worker) {
  if (_stopped || _clock.elapsed() < _nextSample) return;
  _nextSample = _clock.elapsed() + kPeriod.count();
  const double hours = static_cast<double>(_clock.elapsed()) * _hoursPerMillisecond;
  if (const auto size = megabytes(0)) _application.points.push_back({hours, *size});
  const struct mallinfo2 heap = ::mallinfo2();
  _applicationInUse.points.push_back(
      {hours, static_cast<double>(heap.uordblks + heap.hblkhd) / kBytesPerMegabyte});
  if (worker != _worker.process) {
    if (_worker.points.size() > _longestWorker.points.size()) std::swap(_worker, _longestWorker);
    _worker.points.clear();
    _worker.process = worker;
  }
  const std::optional<double> size = worker > 0 ? megabytes(worker) : std::nullopt;
  if (!size) return;
  _worker.points.push_back({hours, *size});
  _mostOfAnyWorker = std::max(_mostOfAnyWorker, *size);
}

Meter::Memory Meter::memoryOf(const Series& series) {
  const auto warm = series.points.begin() + static_cast<std::ptrdiff_t>(series.points.size() / 4);
  const std::vector<Point> points(warm, series.points.end());
  if (points.empty()) return {};
  const auto most = std::max_element(points.begin(), points.end(),
                                     [](const Point& a, const Point& b) { return a.y < b.y; });
  return {points.front().y, points.back().y, most->y, trendOf(points)};
}

Meter::Memory Meter::application() const {
  return memoryOf(_application);
}

Meter::Memory Meter::applicationInUse() const {
  return memoryOf(_applicationInUse);
}

std::vector<double> Meter::courseOf(const Series& series, std::size_t moments) {
  std::vector<double> course;
  const std::size_t points = series.points.size();
  for (std::size_t moment = 0; points > 0 && moment <= moments; ++moment)
    course.push_back(series.points[std::min(moment * points / moments, points - 1)].y);
  return course;
}

std::vector<double> Meter::courseMB(std::size_t moments) const {
  return courseOf(_application, moments);
}

std::vector<double> Meter::courseInUseMB(std::size_t moments) const {
  return courseOf(_applicationInUse, moments);
}

Meter::Memory Meter::longestWorker() const {
  return memoryOf(_worker.points.size() > _longestWorker.points.size() ? _worker : _longestWorker);
}

std::chrono::seconds Meter::longestWorkerLived() const {
  const std::size_t samples = std::max(_worker.points.size(), _longestWorker.points.size());
  return std::chrono::duration_cast<std::chrono::seconds>(samples * kPeriod);
}

}  // namespace ambrel::soak
