/// A stream of bytes that are there already.
#pragma once

#include <ORLFoundation/platform/stream/NSInputStream.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace ORLFoundation::internal::stream {

class MemoryInputStream final : public NSInputStream {
 public:
  explicit MemoryInputStream(NSData data) noexcept : data_(std::move(data)) {}

  NSInteger read(std::span<std::uint8_t> buffer) override;

 private:
  const NSData data_;
  std::size_t taken_ = 0;
};

}  // namespace ORLFoundation::internal::stream
