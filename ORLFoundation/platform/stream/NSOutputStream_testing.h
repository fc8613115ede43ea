/// Output streams as tests need them.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/stream/NSOutputStream.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace orlftest {

/// Keeps what is written call by call, and answers as it is told.
class ScriptedOutputStream : public ORLFoundation::NSOutputStream {
 public:
  static constexpr std::size_t kNever = static_cast<std::size_t>(-1);

  /// nil takes every call whole. From the call of that index on, and with the answer -1 from the
  /// first on, calls fail with the failure below.
  explicit ScriptedOutputStream(std::optional<ORLFoundation::NSInteger> answer = std::nullopt,
                                std::size_t failsFrom = kNever)
      : answer_(answer), failsFrom_(answer == -1 ? 0 : failsFrom) {}

  ORLFoundation::NSInteger write(std::span<const std::uint8_t> buffer) override {
    calls_.emplace_back(buffer.begin(), buffer.end());
    if (calls_.size() <= failsFrom_)
      return answer_.value_or(static_cast<ORLFoundation::NSInteger>(buffer.size()));
    setStreamError(failure_);
    return -1;
  }

  const std::shared_ptr<const ORLFoundation::NSError> failure_ =
      ORLFoundation::NSError::errorWithDomain(ORLFoundation::NSPOSIXErrorDomain, 28);
  std::vector<std::string> calls_;

 private:
  const std::optional<ORLFoundation::NSInteger> answer_;
  const std::size_t failsFrom_;
};

/// All bytes of a stream to memory.
inline std::string bytesWritten(const ORLFoundation::NSOutputStream& stream) {
  using namespace ORLFoundation;
  const auto data = stream.propertyForKey(NSStreamDataWrittenToMemoryStreamKey).as<NSData>();
  return std::string(data.value().text());
}

}  // namespace orlftest
