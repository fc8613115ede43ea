/// Fields that several threads read and change, each under one lock.
#pragma once

#include <mutex>
#include <utility>

namespace ORLFoundation::internal::session {

struct LockedFields {
  /// Nothing is called, and nothing let go of, under it.
  mutable std::mutex lock;

  template <class Value>
  [[nodiscard]] Value read(const Value& field) const {
    const std::lock_guard guard(lock);
    return field;
  }
  /// Answers the old value, to be let go of by the caller.
  template <class Value>
  Value exchange(Value& field, Value value) {
    const std::lock_guard guard(lock);
    std::swap(field, value);
    return value;
  }
};

}  // namespace ORLFoundation::internal::session
