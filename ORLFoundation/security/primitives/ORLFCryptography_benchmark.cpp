// Peers: nettle and OpenSSL itself, zlib itself.
#include <ORLFoundation/security/primitives/ORLFCryptography.h>

#include <ORLFoundation/security/primitives/NewBase64.h>
#include <ORLFoundation/security/primitives/ORLFDataCompression.h>
#include <ORLFoundation/security/primitives/ORLFDataHashing.h>
#include <benchmark/benchmark.h>
#include <nettle/pbkdf2.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <openssl/sha.h>
#include <tests/support/CountedBytes.h>
#include <zlib.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using namespace ORLFoundation;

constexpr std::size_t kBytes = std::size_t{1} << 20;
constexpr unsigned kRounds = 1000;

const NSData& text() {
  static const NSData& made = *new NSData([] {
    std::string lines;
    for (int i = 0; lines.size() < kBytes; ++i)
      lines += "2024-01-31;-" + std::to_string(i * 37 % 9973) + ".25;a payee of the month\n";
    lines.resize(kBytes);
    return NSData(std::string_view(lines));
  }());
  return made;
}

const NSData& key() {
  static const NSData& made = *new NSData(std::vector<std::uint8_t>(16, 7));
  return made;
}

void passwordKey_ours(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(ORLFCryptography::keyWithLength(16, "correct horse", key(), kRounds));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(passwordKey_ours)->Name("PBKDF2 1000 rounds/ours");

void passwordKey_nettle(benchmark::State& state) {
  std::array<std::uint8_t, 16> derived{};
  const std::string password = "correct horse";
  for (auto _ : state) {
    nettle_pbkdf2_hmac_sha1(password.size(), reinterpret_cast<const std::uint8_t*>(password.data()),
                            kRounds, key().length(), key().bytes().data(), derived.size(),
                            derived.data());
    benchmark::DoNotOptimize(derived);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(passwordKey_nettle)->Name("PBKDF2 1000 rounds/nettle");

void passwordKey_openssl(benchmark::State& state) {
  std::array<std::uint8_t, 16> derived{};
  for (auto _ : state) {
    PKCS5_PBKDF2_HMAC_SHA1("correct horse", -1, key().bytes().data(), 16, kRounds, 16,
                           derived.data());
    benchmark::DoNotOptimize(derived);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(passwordKey_openssl)->Name("PBKDF2 1000 rounds/OpenSSL");

void encrypt_ours(benchmark::State& state) {
  for (auto _ : state)
    benchmark::DoNotOptimize(ORLFCryptography::AES128EncryptData(text(), key(), std::nullopt));
  orlftest::countBytes(state, kBytes);
}
BENCHMARK(encrypt_ours)->Name("AES-128 CBC encrypt/ours");

void encrypt_openssl(benchmark::State& state) {
  std::vector<std::uint8_t> out(kBytes + 16);
  EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
  for (auto _ : state) {
    int count = 0;
    EVP_EncryptInit_ex(context, EVP_aes_128_cbc(), nullptr, key().bytes().data(),
                       key().bytes().data());
    EVP_EncryptUpdate(context, out.data(), &count, text().bytes().data(), static_cast<int>(kBytes));
    EVP_EncryptFinal_ex(context, out.data() + count, &count);
    benchmark::DoNotOptimize(out.data());
  }
  EVP_CIPHER_CTX_free(context);
  orlftest::countBytes(state, kBytes);
}
BENCHMARK(encrypt_openssl)->Name("AES-128 CBC encrypt/OpenSSL");

void hash_ours(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(orlfSHAHash(text()));
  orlftest::countBytes(state, kBytes);
}
BENCHMARK(hash_ours)->Name("SHA-1/ours");

void hash_openssl(benchmark::State& state) {
  std::array<std::uint8_t, 20> digest{};
  for (auto _ : state) benchmark::DoNotOptimize(SHA1(text().bytes().data(), kBytes, digest.data()));
  orlftest::countBytes(state, kBytes);
}
BENCHMARK(hash_openssl)->Name("SHA-1/OpenSSL");

void base64Text_ours(benchmark::State& state) {
  for (auto _ : state) {
    char* const made = NewBase64Encode(text().bytes().data(), kBytes, 0, nullptr);
    benchmark::DoNotOptimize(made);
    std::free(made);
  }
  orlftest::countBytes(state, kBytes);
}
BENCHMARK(base64Text_ours)->Name("Base64 encode/ours");

void base64Text_openssl(benchmark::State& state) {
  for (auto _ : state) {
    auto* const made = static_cast<std::uint8_t*>(std::malloc((kBytes + 2) / 3 * 4 + 1));
    EVP_EncodeBlock(made, text().bytes().data(), static_cast<int>(kBytes));
    benchmark::DoNotOptimize(made);
    std::free(made);
  }
  orlftest::countBytes(state, kBytes);
}
BENCHMARK(base64Text_openssl)->Name("Base64 encode/OpenSSL");

const std::string& encodedText() {
  static const std::string& made = *new std::string([] {
    char* const encoded = NewBase64Encode(text().bytes().data(), kBytes, 0, nullptr);
    std::string copied(encoded);
    std::free(encoded);
    return copied;
  }());
  return made;
}

void base64Bytes_ours(benchmark::State& state) {
  for (auto _ : state) {
    void* const made = NewBase64Decode(encodedText().data(), encodedText().size(), nullptr);
    benchmark::DoNotOptimize(made);
    std::free(made);
  }
  orlftest::countBytes(state, kBytes);
}
BENCHMARK(base64Bytes_ours)->Name("Base64 decode/ours");

void base64Bytes_openssl(benchmark::State& state) {
  for (auto _ : state) {
    auto* const made = static_cast<std::uint8_t*>(std::malloc(encodedText().size()));
    EVP_DecodeBlock(made, reinterpret_cast<const std::uint8_t*>(encodedText().data()),
                    static_cast<int>(encodedText().size()));
    benchmark::DoNotOptimize(made);
    std::free(made);
  }
  orlftest::countBytes(state, kBytes);
}
BENCHMARK(base64Bytes_openssl)->Name("Base64 decode/OpenSSL");

void gzip_ours(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(gzippedData(text()));
  orlftest::countBytes(state, kBytes);
}
BENCHMARK(gzip_ours)->Name("gzip/ours");

void gzip_zlib(benchmark::State& state) {
  std::vector<std::uint8_t> input(text().bytes().begin(), text().bytes().end());
  for (auto _ : state) {
    z_stream stream{};
    deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, 31, 8, Z_DEFAULT_STRATEGY);
    std::vector<std::uint8_t> out(deflateBound(&stream, input.size()));
    stream.next_in = input.data();
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    deflateEnd(&stream);
    benchmark::DoNotOptimize(out.data());
  }
  orlftest::countBytes(state, kBytes);
}
BENCHMARK(gzip_zlib)->Name("gzip/zlib");

const NSData& packedText() {
  static const NSData& made = *new NSData(*gzippedData(text()));
  return made;
}

void gunzip_ours(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(gunzippedData(packedText()));
  orlftest::countBytes(state, kBytes);
}
BENCHMARK(gunzip_ours)->Name("gunzip/ours");

void gunzip_zlib(benchmark::State& state) {
  std::vector<std::uint8_t> input(packedText().bytes().begin(), packedText().bytes().end());
  for (auto _ : state) {
    z_stream stream{};
    inflateInit2(&stream, 47);
    std::vector<std::uint8_t> out(kBytes);
    stream.next_in = input.data();
    stream.avail_in = static_cast<uInt>(input.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    inflate(&stream, Z_FINISH);
    inflateEnd(&stream);
    benchmark::DoNotOptimize(out.data());
  }
  orlftest::countBytes(state, kBytes);
}
BENCHMARK(gunzip_zlib)->Name("gunzip/zlib");

void random_ours(benchmark::State& state) {
  for (auto _ : state) benchmark::DoNotOptimize(ORLFCryptography::randomDataOfLength(kBytes));
  orlftest::countBytes(state, kBytes);
}
BENCHMARK(random_ours)->Name("random bytes/ours");

void random_openssl(benchmark::State& state) {
  std::vector<std::uint8_t> bytes(kBytes);
  for (auto _ : state) {
    benchmark::DoNotOptimize(RAND_bytes(bytes.data(), static_cast<int>(kBytes)));
    benchmark::DoNotOptimize(bytes.data());
  }
  orlftest::countBytes(state, kBytes);
}
BENCHMARK(random_openssl)->Name("random bytes/OpenSSL");

}  // namespace
