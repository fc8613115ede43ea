/// The door through which diagnostics reach the process: what the system tells about it, and the
/// two ways in which a failed assertion ends it. Tests put a recording one in its place.
///
///     const auto door = std::make_shared<ORLFRecordingProcessDoor>("TracerPid:\t0\n");
///     const Replaced installed(ORLFSetProcessDoor, door);
///     handler->presentModalAlert(error);   // ends nothing
///     EXPECT_EQ(door->calls(), std::vector<std::string>{"quit"});
#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ORLFoundation {

class ORLFProcessDoor {
 public:
  virtual ~ORLFProcessDoor() = default;

  /// The process's status as the system writes it, "Name:\tvalue" on each line; nil when it cannot
  /// be had.
  [[nodiscard]] virtual std::optional<std::string> status() = 0;
  /// Raises a breakpoint trap. A debugger stops here and may go on; without one the process ends
  /// with signal 5.
  virtual void trap() = 0;
  /// Ends the process with signal 9. The real one does not return.
  virtual void quit() = 0;
};

/// The running process.
class ORLFSystemProcessDoor final : public ORLFProcessDoor {
 public:
  /// The file with the status.
  explicit ORLFSystemProcessDoor(std::string statusPath = "/proc/self/status")
      : statusPath_(std::move(statusPath)) {}

  [[nodiscard]] std::optional<std::string> status() override;
  void trap() override;
  void quit() override;

 private:
  const std::string statusPath_;
};

/// Has a status of its own and keeps a list of calls. Safe on any thread.
class ORLFRecordingProcessDoor final : public ORLFProcessDoor {
 public:
  explicit ORLFRecordingProcessDoor(std::optional<std::string> status)
      : status_(std::move(status)) {}

  [[nodiscard]] std::optional<std::string> status() override { return status_; }
  void trap() override { record("trap"); }
  void quit() override { record("quit"); }
  /// "trap" and "quit" in the order in which they came.
  [[nodiscard]] std::vector<std::string> calls() const;

 private:
  void record(const char* call);

  const std::optional<std::string> status_;
  mutable std::mutex lock_;
  std::vector<std::string> calls_;
};

/// The door in use, never null.
[[nodiscard]] std::shared_ptr<ORLFProcessDoor> ORLFCurrentProcessDoor();
/// Replaces the door and gives back the one before it; null stands for the running process. Safe on
/// any thread.
std::shared_ptr<ORLFProcessDoor> ORLFSetProcessDoor(std::shared_ptr<ORLFProcessDoor> door);

}  // namespace ORLFoundation
