#include <ORLFoundation/platform/container/ArchiveByteStream.h>

#include <ORLFoundation/platform/container/ArchiveEncryptionContext.h>
#include <ORLFoundation/platform/container/ArchiveStream.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

using namespace ORLFoundation;

namespace {

class FuzzedBytes final : public ArchiveByteStream {
 public:
  explicit FuzzedBytes(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

  [[nodiscard]] std::size_t read(std::span<std::uint8_t> bytes) override {
    const std::size_t count = std::min(bytes.size(), bytes_.size());
    std::copy_n(bytes_.begin(), count, bytes.begin());
    bytes_ = bytes_.subspan(count);
    return count;
  }
  [[nodiscard]] std::uint64_t length() const override { return bytes_.size(); }

 private:
  std::span<const std::uint8_t> bytes_;
};

void readEntries(ArchiveByteStream& stream) {
  const auto entries = ArchiveStream::decodeStream(stream);
  std::array<std::uint8_t, 1000> bytes{};
  while (const auto header = entries->readHeader()) {
    static_cast<void>(header->encodedData());
    while (entries->readBlob(bytes) > 0) {
    }
  }
}

}  // namespace

// The first byte chooses what reads the others: entries, blocks around them, or a sealed container
// under a key of zeros. All ends with its end or with an error.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  FuzzedBytes bytes(std::span(data, size).subspan(1));
  try {
    if (data[0] % 3 == 0) {
      readEntries(bytes);
    } else if (data[0] % 3 == 1) {
      readEntries(*ArchiveByteStream::decompressionStream(bytes));
    } else {
      ArchiveEncryptionContext context(bytes);
      context.setSymmetricKey(SymmetricKey(std::array<std::uint8_t, 32>{}));
      if (context.hasKey()) readEntries(*ArchiveByteStream::decryptionStream(bytes, context));
    }
  } catch (const ArchiveError&) {
  }
  return 0;
}
