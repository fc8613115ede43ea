/// Descriptors of files and sockets: their owner, and writing all that is to be written.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace ORLFoundation::internal::base {

/// A descriptor that is closed when its owner dies; a number below 0 is none.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) noexcept : number_(number) {}
  ~Descriptor() {
    if (isOpen()) ::close(number_);
  }
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    if (this == &other) return *this;
    if (isOpen()) ::close(number_);
    number_ = std::exchange(other.number_, -1);
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  [[nodiscard]] bool isOpen() const noexcept { return number_ >= 0; }
  [[nodiscard]] int number() const noexcept { return number_; }
  /// Whether closing told of no failure of what was written; with errno where it did.
  [[nodiscard]] bool close() noexcept { return ::close(std::exchange(number_, -1)) == 0; }

 private:
  int number_;
};

/// Goes on after signals. false, with errno, where not all of it could be written.
[[nodiscard]] inline bool writeAll(int descriptor, std::span<const std::uint8_t> bytes) noexcept {
  while (!bytes.empty()) {
    const ssize_t count = ::write(descriptor, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace ORLFoundation::internal::base
