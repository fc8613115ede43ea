/// Memory that is overwritten when it is given back: for texts that hold passwords.
///
///     WipedText text;
///     text += "a password";   // what it outgrows is overwritten too
#pragma once

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::base {

template <class T>
class WipingAllocator {
 public:
  using value_type = T;

  WipingAllocator() = default;
  template <class Other>
  WipingAllocator(const WipingAllocator<Other>&) noexcept {}

  [[nodiscard]] T* allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
  void deallocate(T* memory, std::size_t count) noexcept {
    explicit_bzero(static_cast<void*>(memory), count * sizeof(T));
    std::allocator<T>().deallocate(memory, count);
  }

  friend bool operator==(const WipingAllocator&, const WipingAllocator&) noexcept { return true; }
};

/// A text whose memory on the heap is wiped; one of a few characters may lie in the object itself.
using WipedText = std::basic_string<char, std::char_traits<char>, WipingAllocator<char>>;

/// Bytes that never lie in the object itself.
using WipedBytes = std::vector<char, WipingAllocator<char>>;

/// A copy of a text, for interfaces that take one; wiped wherever it lies.
class WipedCopy {
 public:
  explicit WipedCopy(std::string_view text) : text_(text) {}
  ~WipedCopy() { explicit_bzero(text_.data(), text_.size()); }
  WipedCopy(const WipedCopy&) = delete;
  WipedCopy& operator=(const WipedCopy&) = delete;

  [[nodiscard]] const std::string& text() const noexcept { return text_; }

 private:
  std::string text_;
};

}  // namespace ORLFoundation::internal::base
