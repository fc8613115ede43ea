/// Sources of random bytes that tests foretell.
#pragma once

#include <ORLFoundation/platform/crypto/SecRandom.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <span>

namespace orlftest {

class NoRandomBytes final : public ORLFoundation::SecRandomSource {
 public:
  bool copyBytes(std::span<std::uint8_t> /*bytes*/) override {
    errno = EIO;
    return false;
  }
};

/// One byte, as often as it is asked for.
class SameRandomBytes final : public ORLFoundation::SecRandomSource {
 public:
  explicit SameRandomBytes(std::uint8_t byte) : byte_(byte) {}
  bool copyBytes(std::span<std::uint8_t> bytes) override {
    std::fill(bytes.begin(), bytes.end(), byte_);
    return true;
  }

 private:
  const std::uint8_t byte_;
};

}  // namespace orlftest
