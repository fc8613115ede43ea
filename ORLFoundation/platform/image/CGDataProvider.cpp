

#include <ORLFoundation/platform/image/CGDataProvider.h>

#include <utility>

namespace ORLFoundation {

CGDataProvider::~CGDataProvider() {
  if (releaseData_ != nullptr) releaseData_(info_, data_, size_);
}

CGDataProviderRef CGDataProvider::providerWithBytes(std::vector<std::uint8_t> bytes) {
  auto owned = std::make_unique<std::vector<std::uint8_t>>(std::move(bytes));
  const auto release = [](void* info, const void*, std::size_t) {
    delete static_cast<std::vector<std::uint8_t>*>(info);
  };
  auto provider =
      std::make_shared<CGDataProvider>(owned.get(), owned->data(), owned->size(), release);
  static_cast<void>(owned.release());
  return provider;
}

}  // namespace ORLFoundation
