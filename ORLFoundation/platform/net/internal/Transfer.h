/// What a loader does for one task.
#pragma once

#include <ORLFoundation/platform/net/internal/Recipient.h>

#include <chrono>
#include <memory>
#include <string>
#include <utility>

namespace ORLFoundation::internal::net {

using LoadTime = std::chrono::steady_clock::time_point;
inline constexpr LoadTime kNeverDue = LoadTime::max();

/// So many seconds after a time; never for infinity.
[[nodiscard]] LoadTime timeAfter(LoadTime start, double seconds) noexcept;

/// All on the loader's thread. Destroying one that runs breaks it off.
class Transfer {
 public:
  Transfer(std::shared_ptr<LoadingTask> task, std::shared_ptr<Recipient> recipient)
      : task_(std::move(task)), recipient_(std::move(recipient)) {}
  virtual ~Transfer() = default;
  Transfer(const Transfer&) = delete;
  Transfer& operator=(const Transfer&) = delete;

  virtual void begin() = 0;
  /// The delegate takes more.
  virtual void proceed() = 0;
  /// When it has been silent for too long.
  [[nodiscard]] virtual LoadTime due() const { return kNeverDue; }

  [[nodiscard]] const std::shared_ptr<LoadingTask>& task() const noexcept { return task_; }
  [[nodiscard]] Recipient& recipient() const noexcept { return *recipient_; }

  /// Those of one name share a server's connections; "" needs none.
  std::string origin;
  bool hasConnection = false;     ///< Whether it counts among those that run there.
  LoadTime lastTime = kNeverDue;  ///< When it has taken too long as a whole.

 private:
  const std::shared_ptr<LoadingTask> task_;
  const std::shared_ptr<Recipient> recipient_;
};

}  // namespace ORLFoundation::internal::net
