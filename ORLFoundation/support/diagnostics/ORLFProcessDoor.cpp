
#include <ORLFoundation/support/diagnostics/ORLFProcessDoor.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <sstream>

namespace ORLFoundation {
namespace {

constinit internal::base::Replaceable<ORLFProcessDoor> doors(
    []() -> std::shared_ptr<ORLFProcessDoor> { return std::make_shared<ORLFSystemProcessDoor>(); });

}  // namespace

std::optional<std::string> ORLFSystemProcessDoor::status() {
  const std::ifstream file(statusPath_, std::ios::binary);
  if (!file) return std::nullopt;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

void ORLFSystemProcessDoor::trap() {
#if defined(__x86_64__) || defined(__i386__)
  // Unlike a raised signal it cannot be ignored or held back.
  __asm__ volatile("int3");
#else
  ::raise(SIGTRAP);
#endif
}

void ORLFSystemProcessDoor::quit() { ::kill(::getpid(), SIGKILL); }

std::vector<std::string> ORLFRecordingProcessDoor::calls() const {
  const std::lock_guard guard(lock_);
  return calls_;
}

void ORLFRecordingProcessDoor::record(const char* call) {
  const std::lock_guard guard(lock_);
  calls_.emplace_back(call);
}

std::shared_ptr<ORLFProcessDoor> ORLFCurrentProcessDoor() { return doors.current(); }

std::shared_ptr<ORLFProcessDoor> ORLFSetProcessDoor(std::shared_ptr<ORLFProcessDoor> door) {
  return doors.exchangeMade(std::move(door));
}

}  // namespace ORLFoundation
