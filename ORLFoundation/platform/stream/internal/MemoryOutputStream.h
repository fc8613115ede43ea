/// A stream that keeps what is written.
#pragma once

#include <ORLFoundation/platform/stream/NSOutputStream.h>

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::stream {

class MemoryOutputStream final : public NSOutputStream {
 public:
  NSInteger write(std::span<const std::uint8_t> buffer) override;
  [[nodiscard]] id propertyForKey(std::string_view key) const override;

 private:
  std::vector<std::uint8_t> bytes_;
};

}  // namespace ORLFoundation::internal::stream
