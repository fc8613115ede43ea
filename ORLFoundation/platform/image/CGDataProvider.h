/// Bytes that an image shows, with the function that gives them back when nobody needs them any
/// more.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace ORLFoundation {

/// Called once, on the thread that drops the last reference to the provider.
using CGDataProviderReleaseDataCallback = void (*)(void* info, const void* data, std::size_t size);

class CGDataProvider final : public NSObject {
 public:
  /// `CGDataProviderCreateWithData`  Owns the bytes when there is a callback; without one the
  /// caller keeps them valid for as long as the provider lives.
  CGDataProvider(void* info, const void* data, std::size_t size,
                 CGDataProviderReleaseDataCallback releaseData) noexcept
      : info_(info), data_(data), size_(size), releaseData_(releaseData) {}
  ~CGDataProvider() override;
  /// A provider of bytes of its own.
  [[nodiscard]] static std::shared_ptr<const CGDataProvider> providerWithBytes(
      std::vector<std::uint8_t> bytes);

  [[nodiscard]] std::span<const std::uint8_t> bytes() const noexcept {
    return {static_cast<const std::uint8_t*>(data_), size_};
  }

  [[nodiscard]] std::string className() const override { return "CGDataProvider"; }

 private:
  void* info_;
  const void* data_;
  std::size_t size_;
  CGDataProviderReleaseDataCallback releaseData_;
};

using CGDataProviderRef = std::shared_ptr<const CGDataProvider>;

}  // namespace ORLFoundation
