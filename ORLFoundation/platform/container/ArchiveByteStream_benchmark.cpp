// Peer: LZFSE itself over the same blocks, one after the other.
#include <ORLFoundation/platform/container/ArchiveByteStream.h>

#include <ORLFoundation/platform/compression/LZFSE_testing.h>
#include <ORLFoundation/platform/container/ArchiveEncryptionContext.h>
#include <benchmark/benchmark.h>
#include <tests/support/CountedBytes.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>

namespace {

using namespace ORLFoundation;
using orlftest::Bytes;
using orlftest::countBytes;

constexpr std::size_t kBytes = std::size_t{32} << 20;

const Bytes& text() {
  static const Bytes& made = *new Bytes(orlftest::ledgerText(kBytes));
  return made;
}

class MemoryStream final : public ArchiveByteStream {
 public:
  std::size_t read(std::span<std::uint8_t> bytes) override {
    const std::size_t count = std::min(bytes.size(), bytes_.size() - at_);
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(at_), count, bytes.begin());
    at_ += count;
    return count;
  }
  void write(std::span<const std::uint8_t> bytes) override { writeAt(bytes_.size(), bytes); }
  void writeAt(std::uint64_t place, std::span<const std::uint8_t> bytes) override {
    bytes_.resize(std::max<std::size_t>(bytes_.size(), place + bytes.size()));
    std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(place));
  }
  [[nodiscard]] std::uint64_t length() const override { return bytes_.size(); }
  [[nodiscard]] std::size_t size() const { return bytes_.size(); }
  void rewind() { at_ = 0; }

 private:
  Bytes bytes_;
  std::size_t at_ = 0;
};

std::unique_ptr<ArchiveEncryptionContext> sealing() {
  auto context = std::make_unique<ArchiveEncryptionContext>(
      ArchiveEncryptionContext::Profile::hkdf_sha256_aesctr_hmac__symmetric__none,
      ArchiveCompression::lzfse);
  context->setSymmetricKey(SymmetricKey(std::array<std::uint8_t, 32>{}));
  return context;
}

void packInto(MemoryStream& memory, bool isSealed) {
  const auto context = sealing();
  const auto stream = isSealed
                          ? ArchiveByteStream::encryptionStream(memory, *context)
                          : ArchiveByteStream::compressionStream(ArchiveCompression::lzfse, memory);
  stream->write(text());
  stream->close();
}

std::size_t unpackFrom(MemoryStream& memory, bool isSealed) {
  memory.rewind();
  std::unique_ptr<ArchiveEncryptionContext> context;
  std::shared_ptr<ArchiveByteStream> stream;
  if (isSealed) {
    context = std::make_unique<ArchiveEncryptionContext>(memory);
    context->setSymmetricKey(SymmetricKey(std::array<std::uint8_t, 32>{}));
    stream = ArchiveByteStream::decryptionStream(memory, *context);
  } else {
    stream = ArchiveByteStream::decompressionStream(memory);
  }
  Bytes bytes(std::size_t{1} << 20);
  std::size_t sum = 0;
  while (const std::size_t count = stream->read(bytes)) sum += count;
  return sum;
}

template <bool isSealed>
void pack_ours(benchmark::State& state) {
  std::size_t packed = 0;
  for (auto _ : state) {
    MemoryStream memory;
    packInto(memory, isSealed);
    packed = memory.size();
  }
  countBytes(state, kBytes, packed);
}
BENCHMARK_TEMPLATE(pack_ours, false)->Name("archive pack/ours")->UseRealTime();
BENCHMARK_TEMPLATE(pack_ours, true)->Name("sealed archive pack/ours")->UseRealTime();

template <bool isSealed>
void unpack_ours(benchmark::State& state) {
  MemoryStream memory;
  packInto(memory, isSealed);
  for (auto _ : state)
    if (unpackFrom(memory, isSealed) != kBytes) state.SkipWithError("other bytes");
  countBytes(state, kBytes, memory.size());
}
BENCHMARK_TEMPLATE(unpack_ours, false)->Name("archive unpack/ours")->UseRealTime();
BENCHMARK_TEMPLATE(unpack_ours, true)->Name("sealed archive unpack/ours")->UseRealTime();

void pack_blocks(benchmark::State& state) {
  internal::compression::LZFSEEncoder encoder;
  std::size_t packed = 0;
  for (auto _ : state) {
    packed = 0;
    for (std::size_t at = 0; at < kBytes; at += ArchiveByteStream::kBlockBytes) {
      Bytes block;
      encoder.append(std::span(text()).subspan(at, ArchiveByteStream::kBlockBytes), block);
      packed += block.size();
    }
  }
  countBytes(state, kBytes, packed);
}
BENCHMARK(pack_blocks)->Name("archive pack/LZFSE alone")->UseRealTime();

}  // namespace
