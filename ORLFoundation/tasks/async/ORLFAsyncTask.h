/// Cancellable background work, whatever does it: a subclass of `ORLFAsyncTaskBase`, a block
/// (`ORLFAsyncBlockTask`), an exchange of a session.
///
///     task.resume();
///     task.cancel();              // the work has to look at `canceled`
///     task.waitUntilFinished();
#pragma once

namespace ORLFoundation {

class ORLFAsyncTask {
 public:
  virtual ~ORLFAsyncTask() = default;

  /// `resume`  Begins the work.
  virtual void resume() = 0;
  /// `cancel`
  virtual void cancel() = 0;
  /// `waitUntilFinished`
  virtual void waitUntilFinished() = 0;
  /// `canceled`
  [[nodiscard]] virtual bool canceled() const = 0;
};

/// What a block that runs in a task may ask.
class ORLFAsyncBlockTaskStatus {
 public:
  virtual ~ORLFAsyncBlockTaskStatus() = default;
  /// `canceled`
  [[nodiscard]] virtual bool canceled() const = 0;
};

}  // namespace ORLFoundation
