// Peer: zlib at its fastest and at the level that the container's platform takes.
#include <ORLFoundation/platform/compression/LZFSE.h>

#include <ORLFoundation/platform/compression/LZFSE_testing.h>
#include <benchmark/benchmark.h>
#include <tests/support/CountedBytes.h>
#include <zlib.h>

#include <vector>

namespace {

using namespace ORLFoundation::internal::compression;
using orlftest::Bytes;
using orlftest::countBytes;

constexpr std::size_t kBytes = std::size_t{4} << 20;

const Bytes& text() {
  static const Bytes& made = *new Bytes(orlftest::ledgerText(kBytes));
  return made;
}

void pack_ours(benchmark::State& state) {
  LZFSEEncoder encoder;
  Bytes stream;
  for (auto _ : state) {
    stream.clear();
    encoder.append(text(), stream);
    benchmark::DoNotOptimize(stream.data());
  }
  countBytes(state, kBytes, stream.size());
}
BENCHMARK(pack_ours)->Name("LZFSE pack/ours");

void unpack_ours(benchmark::State& state) {
  const Bytes stream = orlftest::packed(text());
  LZFSEDecoder decoder;
  Bytes output(kBytes);
  for (auto _ : state) {
    if (!decoder.decode(stream, output)) state.SkipWithError("it does not decode");
    benchmark::DoNotOptimize(output.data());
  }
  if (output != text()) state.SkipWithError("other bytes");
  countBytes(state, kBytes, stream.size());
}
BENCHMARK(unpack_ours)->Name("LZFSE unpack/ours");

Bytes deflated(int level) {
  uLongf length = compressBound(kBytes);
  Bytes stream(length);
  compress2(stream.data(), &length, text().data(), kBytes, level);
  stream.resize(length);
  return stream;
}

template <int level>
void pack_zlib(benchmark::State& state) {
  Bytes stream;
  for (auto _ : state) stream = deflated(level);
  countBytes(state, kBytes, stream.size());
}
BENCHMARK_TEMPLATE(pack_zlib, 1)->Name("LZFSE pack/zlib 1");
BENCHMARK_TEMPLATE(pack_zlib, 5)->Name("LZFSE pack/zlib 5");

void unpack_zlib(benchmark::State& state) {
  const Bytes stream = deflated(5);
  Bytes output(kBytes);
  for (auto _ : state) {
    uLongf length = kBytes;
    if (uncompress(output.data(), &length, stream.data(), stream.size()) != Z_OK)
      state.SkipWithError("it does not inflate");
    benchmark::DoNotOptimize(output.data());
  }
  countBytes(state, kBytes, stream.size());
}
BENCHMARK(unpack_zlib)->Name("LZFSE unpack/zlib");

}  // namespace
