/// Puts a value behind one of the library's doors while it lives, for tests and for hosts that
/// lend one; what stood there before comes back when it dies. It works on every function that takes
/// a value and gives back the one before it.
///
///     const Replaced silence(NSSetLogSink, [](std::string_view) {});
///     const Replaced presenter(NSSetAlertPresenter, std::make_shared<NSScriptedAlertPresenter>(
///                                                       std::vector<NSInteger>{1}));
#pragma once

#include <type_traits>
#include <utility>

namespace ORLFoundation {

template <class Value>
class Replaced {
 public:
  Replaced(Value (*exchange)(Value), std::type_identity_t<Value> value)
      : exchange_(exchange), before_(exchange(std::move(value))) {}
  ~Replaced() { exchange_(std::move(before_)); }
  Replaced(const Replaced&) = delete;
  Replaced& operator=(const Replaced&) = delete;

  /// What comes back.
  [[nodiscard]] const Value& before() const noexcept { return before_; }

 private:
  Value (*exchange_)(Value);
  Value before_;
};

}  // namespace ORLFoundation
