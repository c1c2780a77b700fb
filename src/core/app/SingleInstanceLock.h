// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

namespace ambrel {

// Keeps a second instance of the application from running beside the first. The lock belongs to the process:
// it is held until the process ends, whatever becomes of this object.
class SingleInstanceLock {
 public:
  explicit SingleInstanceLock(const QString& temporaryFolder);

  // False when another process holds the lock. True when it is ours now, and also when the lock file cannot
  // be opened: running without protection beats not running.
  bool acquireSingleInstanceLock();

  QString path() const { return _path; }

 private:
  QString _path;
};

}  // namespace ambrel
