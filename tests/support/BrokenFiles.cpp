// SPDX-License-Identifier: Apache-2.0
#include "support/BrokenFiles.h"

#include <utility>

namespace ambrel {

// One call under way: counted, announced to the hooks, and broken where the test says so.
class BrokenFiles::Call {
 public:
  Call(BrokenFiles& files, Operation operation, QString from, QString to = {})
      : _files(files), _from(std::move(from)), _to(std::move(to)) {
    Hook before;
    {
      const std::lock_guard lock(_files._mutex);
      ++_files._callsUnderWay;
      Plan& plan = _files._plans[operation];
      const auto failure = plan.failures.find(++plan.calls);
      _failure = failure == plan.failures.end() ? plan.failure : failure->second;
      before = plan.before;
      _after = plan.after;
    }
    run(before);
  }
  ~Call() { end(); }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  const std::optional<QString>& failure() const { return _failure; }

  template <typename Answer>
  Answer after(Answer answer) {
    run(_after);
    return answer;
  }

 private:
  void run(const Hook& hook) {
    if (!hook) return;
    try {
      hook(_from, _to);
    } catch (...) {
      end();
      throw;
    }
  }

  void end() {
    const std::lock_guard lock(_files._mutex);
    if (std::exchange(_ended, true)) return;
    --_files._callsUnderWay;
    _files._callEnded.notify_all();
  }

  BrokenFiles& _files;
  QString _from;
  QString _to;
  Hook _after;
  std::optional<QString> _failure;
  bool _ended = false;
};

BrokenFiles::~BrokenFiles() {
  std::unique_lock lock(_mutex);
  _callEnded.wait(lock, [this] { return _callsUnderWay == 0; });
}

void BrokenFiles::failCall(Operation operation, int n, const QString& message) {
  const std::lock_guard lock(_mutex);
  Plan& plan = _plans[operation];
  plan.failures[plan.calls + n] = message;
}

void BrokenFiles::failAlways(Operation operation, const QString& message) {
  const std::lock_guard lock(_mutex);
  _plans[operation].failure = message;
}

void BrokenFiles::mend(Operation operation) {
  const std::lock_guard lock(_mutex);
  _plans[operation].failures.clear();
  _plans[operation].failure.reset();
}

void BrokenFiles::callBefore(Operation operation, Hook hook) {
  const std::lock_guard lock(_mutex);
  _plans[operation].before = std::move(hook);
}

void BrokenFiles::callAfter(Operation operation, Hook hook) {
  const std::lock_guard lock(_mutex);
  _plans[operation].after = std::move(hook);
}

void BrokenFiles::setVolumeSpace(const VolumeSpace& space) {
  const std::lock_guard lock(_mutex);
  _space = space;
}

int BrokenFiles::calls(Operation operation) const {
  const std::lock_guard lock(_mutex);
  const auto plan = _plans.find(operation);
  return plan == _plans.end() ? 0 : plan->second.calls;
}

Result<void> BrokenFiles::replaceWhole(const QString& path, const QByteArray& bytes) {
  Call call(*this, Operation::Replace, path);
  if (call.failure()) return Failure{*call.failure()};
  return call.after(_real.replaceWhole(path, bytes));
}

Result<void> BrokenFiles::replaceWholeUnflushed(const QString& path, const QByteArray& bytes) {
  Call call(*this, Operation::ReplaceUnflushed, path);
  if (call.failure()) return Failure{*call.failure()};
  return call.after(_real.replaceWholeUnflushed(path, bytes));
}

Result<void> BrokenFiles::flush(const QString& path) {
  Call call(*this, Operation::Flush, path);
  if (call.failure()) return Failure{*call.failure()};
  return call.after(_real.flush(path));
}

Files::MoveResult BrokenFiles::moveWithoutOverwriting(const QString& from, const QString& to) {
  Call call(*this, Operation::Move, from, to);
  if (call.failure()) return {MoveOutcome::Failed, *call.failure()};
  return call.after(_real.moveWithoutOverwriting(from, to));
}

Files::MoveResult BrokenFiles::copyWhole(const QString& from, const QString& to) {
  Call call(*this, Operation::Copy, from, to);
  if (call.failure()) return {MoveOutcome::Failed, *call.failure()};
  return call.after(_real.copyWhole(from, to));
}

Result<Files::FlushOfCopy> BrokenFiles::copyToNew(const QString& from, const QString& to) {
  Call call(*this, Operation::CopyToNew, from, to);
  if (call.failure()) return Failure{*call.failure()};
  Result<FlushOfCopy> copied = call.after(_real.copyToNew(from, to));
  if (!copied) return copied;
  return FlushOfCopy([this, from, to, flush = std::move(copied).value()]() -> Result<void> {
    Call flushing(*this, Operation::FlushOfCopy, from, to);
    if (flushing.failure()) {
      (void)_real.remove(to);
      return Failure{*flushing.failure()};
    }
    return flushing.after(flush());
  });
}

Result<void> BrokenFiles::moveReplacing(const QString& from, const QString& to) {
  Call call(*this, Operation::MoveReplacing, from, to);
  if (call.failure()) return Failure{*call.failure()};
  return call.after(_real.moveReplacing(from, to));
}

Result<void> BrokenFiles::flushFolder(const QString& folder) {
  Call call(*this, Operation::FlushFolder, folder);
  if (call.failure()) return Failure{*call.failure()};
  return call.after(_real.flushFolder(folder));
}

Result<void> BrokenFiles::remove(const QString& path) {
  Call call(*this, Operation::Remove, path);
  if (call.failure()) return Failure{*call.failure()};
  return call.after(_real.remove(path));
}

VolumeSpace BrokenFiles::volumeSpace(const QString& path) {
  Call call(*this, Operation::Space, path);
  if (call.failure()) return {};
  std::optional<VolumeSpace> space;
  {
    const std::lock_guard lock(_mutex);
    space = _space;
  }
  return call.after(space ? *space : _real.volumeSpace(path));
}

}  // namespace ambrel
