// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QProcess>
#include <string>

namespace ambrel::bench {

// gphoto2 in tethered capture, keeping the photos on the card as the worker does; they come into `folder`,
// which is made.
class TetheredGphoto2 {
 public:
  TetheredGphoto2(const std::string& port, const QString& folder, const QStringList& options);
  ~TetheredGphoto2();
  TetheredGphoto2(const TetheredGphoto2&) = delete;
  TetheredGphoto2& operator=(const TetheredGphoto2&) = delete;

  pid_t pid() const { return static_cast<pid_t>(_process.processId()); }

 private:
  QProcess _process;
};

}  // namespace ambrel::bench
