/// A door to the outside world: one value for the whole process that a host or a test may replace.
///
///     constinit Replaceable<Presenter> presenters(
///         []() -> std::shared_ptr<Presenter> { return std::make_shared<Terminal>(); });
///     presenters.current()->show(alert);
///     const auto before = presenters.exchange(std::make_shared<Window>());
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <type_traits>
#include <utility>

namespace ORLFoundation::internal::base {

/// Safe on any thread. Costs no constructor at the process's start and is never destroyed, so that
/// what runs while the process ends still finds it; therefore its instances are static.
template <class Value>
class Replaceable {
 public:
  using Pointer = std::shared_ptr<Value>;

  /// `makeDefault` gives what stands here until it is replaced; it is called at the first need, and
  /// again after null was put in. It runs outside of the lock, so that it may ask for this very
  /// value; when threads race to the first need, all get the value of one of them. Without it, the
  /// default is null.
  explicit constexpr Replaceable(Pointer (*makeDefault)() = nullptr) noexcept
      : makeDefault_(makeDefault) {}
  Replaceable(const Replaceable&) = delete;
  Replaceable& operator=(const Replaceable&) = delete;

  /// Takes no lock where nothing is put in and the default is null.
  [[nodiscard]] Pointer current() {
    static_assert(std::is_trivially_destructible_v<Replaceable>);
    if (makeDefault_ == nullptr && !isFilled_.load(std::memory_order_acquire)) return nullptr;
    if (Pointer value = stored()) return value;
    if (makeDefault_ == nullptr) return nullptr;
    Pointer made = makeDefault_();
    const std::lock_guard guard(lock_);
    if (place() == nullptr) place() = std::move(made);
    return place();
  }

  /// Puts a value in, null for the default, and gives back the one before it: null when that was a
  /// default that nobody had asked for yet.
  Pointer exchange(Pointer value) {
    const std::lock_guard guard(lock_);
    isFilled_.store(value != nullptr, std::memory_order_release);
    place().swap(value);
    return value;
  }

  /// The same, and never gives null: makes the default that nobody had asked for. For doors whose
  /// default costs nothing to make.
  Pointer exchangeMade(Pointer value) {
    if (value == nullptr) value = makeDefault_();
    static_cast<void>(current());
    return exchange(std::move(value));
  }

 private:
  Pointer stored() {
    const std::lock_guard guard(lock_);
    return place();
  }
  /// With lock_ held.
  Pointer& place() {
    if (place_ == nullptr) place_ = new Pointer;
    return *place_;
  }

  Pointer (*const makeDefault_)();
  std::mutex lock_;
  std::atomic<bool> isFilled_{false};
  Pointer* place_ = nullptr;
};

/// The same for a function, which may be called while it is replaced; an empty one stands for the
/// default, which is the caller's.
template <class Function>
class ReplaceableFunction {
 public:
  /// null where none is put in; then no lock is taken.
  [[nodiscard]] std::shared_ptr<const Function> current() { return function_.current(); }
  /// Gives back the one before, empty where the default stood.
  Function exchange(Function function) {
    std::shared_ptr<const Function> next;
    if (function) next = std::make_shared<const Function>(std::move(function));
    const std::shared_ptr<const Function> before = function_.exchange(std::move(next));
    return before ? *before : Function();
  }

 private:
  Replaceable<const Function> function_;
};

}  // namespace ORLFoundation::internal::base
