/// Calls that a test looks at, refuses, or does something before.
///
///     const auto calls = std::make_shared<FileCallsOfTest>([&](FileCall call, std::string_view) {
///       errno = ENOSPC;
///       return call != FileCall::Write;
///     });
#pragma once

#include <ORLFoundation/platform/files/FileCalls.h>

#include <cerrno>
#include <cstddef>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>

namespace ORLFoundation {

class FileCallsOfTest final : public internal::files::FileCalls {
 public:
  /// Called before each call; false refuses it with the errno that is set.
  using Moment = std::function<bool(internal::files::FileCall call, std::string_view name)>;

  explicit FileCallsOfTest(Moment moment) : moment_(std::move(moment)) {}

 protected:
  bool allows(internal::files::FileCall call, std::string_view name) override {
    return moment_(call, name);
  }

 private:
  const Moment moment_;
};

/// Calls of which one kind fails, each time, with an errno.
inline std::shared_ptr<FileCallsOfTest> callsThatRefuse(internal::files::FileCall refused,
                                                        int number) {
  return std::make_shared<FileCallsOfTest>(
      [refused, number](internal::files::FileCall call, std::string_view) {
        if (call == refused) errno = number;
        return call != refused;
      });
}

/// Calls before one of which, counted from 0, something is done, with that call and its name; it
/// may refuse it.
class FileCallsWithMoment {
 public:
  template <class Do>
  FileCallsWithMoment(std::size_t moment, Do doIt) : count_(std::make_shared<std::size_t>(0)) {
    const auto look = [count = count_, moment, doIt](internal::files::FileCall call,
                                                     std::string_view name) {
      return (*count)++ != moment || doIt(call, name);
    };
    calls_ = std::make_shared<FileCallsOfTest>(look);
  }

  [[nodiscard]] const std::shared_ptr<FileCallsOfTest>& calls() const noexcept { return calls_; }
  /// How many there were.
  [[nodiscard]] std::size_t count() const noexcept { return *count_; }

 private:
  const std::shared_ptr<std::size_t> count_;
  std::shared_ptr<FileCallsOfTest> calls_;
};

}  // namespace ORLFoundation
