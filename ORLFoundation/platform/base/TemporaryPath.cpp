#include <ORLFoundation/platform/base/TemporaryPath.h>

#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstring>
#include <new>

namespace ORLFoundation::internal::base {
namespace {

static_assert(std::atomic<std::uint8_t>::is_always_lock_free &&
              std::atomic<void*>::is_always_lock_free);

std::atomic<bool> isEnding{false};

}  // namespace

/// Slots are used again and never given back, so that a handler may walk over them at any time.
struct TemporaryPath::Slot {
  enum class State : std::uint8_t { Free, BeingWritten, Noted };

  std::atomic<State> state{State::BeingWritten};
  std::array<char, PATH_MAX> path{};
  Slot* next = nullptr;

  static std::atomic<Slot*> first;
};

std::atomic<TemporaryPath::Slot*> TemporaryPath::Slot::first{nullptr};

/// A free slot, or a new one; null where there is no memory for it.
TemporaryPath::Slot* TemporaryPath::takeSlot() noexcept {
  for (Slot* slot = Slot::first; slot != nullptr; slot = slot->next) {
    Slot::State expected = Slot::State::Free;
    if (slot->state.compare_exchange_strong(expected, Slot::State::BeingWritten)) return slot;
  }
  auto* const made = new (std::nothrow) Slot;
  if (made == nullptr) return nullptr;
  made->next = Slot::first;
  while (!Slot::first.compare_exchange_weak(made->next, made)) {
  }
  return made;
}

TemporaryPath::TemporaryPath(std::string_view path) noexcept
    : slot_(path.size() < PATH_MAX ? takeSlot() : nullptr) {
  if (slot_ == nullptr) return;
  // A handler that is at work may be reading the path that stood here before.
  while (isEnding) ::pause();
  std::memcpy(slot_->path.data(), path.data(), path.size());
  slot_->path.at(path.size()) = '\0';
  slot_->state = Slot::State::Noted;
}

TemporaryPath::~TemporaryPath() {
  if (slot_ != nullptr) slot_->state = Slot::State::Free;
}

void removeTemporaryFiles() noexcept {
  using Slot = TemporaryPath::Slot;
  const int before = errno;
  isEnding = true;
  for (const Slot* slot = Slot::first; slot != nullptr; slot = slot->next)
    if (slot->state == Slot::State::Noted) ::unlink(slot->path.data());
  errno = before;
}

}  // namespace ORLFoundation::internal::base
