// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <optional>

#include "core/base/Files.h"

namespace ambrel {

// A real Files in which a test breaks single operations, watches them, or holds them up. Safe to use while
// other threads work with it.
class BrokenFiles : public Files {
 public:
  enum class Operation {
    Replace,
    ReplaceUnflushed,
    Flush,
    Move,
    Copy,
    CopyToNew,
    FlushOfCopy,
    MoveReplacing,
    FlushFolder,
    Remove,
    Space
  };
  // Runs on the thread that called the operation, with its paths; the second is empty where there is only
  // one. May block or throw.
  using Hook = std::function<void(const QString& from, const QString& to)>;

  explicit BrokenFiles(Files& real) : _real(real) {}
  // Waits for calls that are still held up.
  ~BrokenFiles() override;
  BrokenFiles(const BrokenFiles&) = delete;
  BrokenFiles& operator=(const BrokenFiles&) = delete;

  // The n-th call from now on fails with `message` and does nothing; 1 is the next one.
  void failCall(Operation operation, int n, const QString& message);
  void failAlways(Operation operation, const QString& message);
  // No call fails any more.
  void mend(Operation operation);
  void callBefore(Operation operation, Hook hook);
  void callAfter(Operation operation, Hook hook);
  void setVolumeSpace(const VolumeSpace& space);
  int calls(Operation operation) const;

  Result<void> replaceWhole(const QString& path, const QByteArray& bytes) override;
  Result<void> replaceWholeUnflushed(const QString& path, const QByteArray& bytes) override;
  Result<void> flush(const QString& path) override;
  MoveResult moveWithoutOverwriting(const QString& from, const QString& to) override;
  MoveResult copyWhole(const QString& from, const QString& to) override;
  Result<FlushOfCopy> copyToNew(const QString& from, const QString& to) override;
  Result<void> moveReplacing(const QString& from, const QString& to) override;
  Result<void> flushFolder(const QString& folder) override;
  Result<void> remove(const QString& path) override;
  VolumeSpace volumeSpace(const QString& path) override;

 private:
  struct Plan {
    int calls = 0;
    std::map<int, QString> failures;  // by the number of the call, counted from 1
    std::optional<QString> failure;   // of every call
    Hook before;
    Hook after;
  };
  class Call;

  Files& _real;
  mutable std::mutex _mutex;  // guards everything below
  std::condition_variable _callEnded;
  std::map<Operation, Plan> _plans;
  std::optional<VolumeSpace> _space;
  int _callsUnderWay = 0;
};

}  // namespace ambrel
