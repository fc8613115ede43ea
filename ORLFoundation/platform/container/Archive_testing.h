/// Streams in memory, scripted random bytes, and trees of files, for tests of archives.
#pragma once

#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/platform/container/ArchiveByteStream.h>
#include <ORLFoundation/platform/container/ArchiveStream.h>
#include <ORLFoundation/platform/crypto/SecRandom.h>
#include <gtest/gtest.h>
#include <openssl/sha.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace orlftest {

using Octets = std::vector<std::uint8_t>;

inline Octets octets(std::string_view text) { return {text.begin(), text.end()}; }
inline Octets octetsOfHex(std::string hex) {
  hex.erase(std::remove(hex.begin(), hex.end(), ' '), hex.end());
  const auto bytes = ORLFoundation::internal::base::bytesOfHexText(hex);
  if (!bytes) throw std::runtime_error("no hexadecimal text");
  return octets(*bytes);
}
inline std::string hexOfOctets(std::span<const std::uint8_t> bytes) {
  return ORLFoundation::internal::base::hexText(std::string(bytes.begin(), bytes.end()));
}
inline std::string sha256OfOctets(std::span<const std::uint8_t> bytes) {
  std::array<std::uint8_t, SHA256_DIGEST_LENGTH> digest{};
  SHA256(bytes.data(), bytes.size(), digest.data());
  return hexOfOctets(digest);
}

/// Bytes in memory that are read, and written at any place.
class MemoryByteStream final : public ORLFoundation::ArchiveByteStream {
 public:
  explicit MemoryByteStream(Octets bytes = {}) : bytes_(std::move(bytes)) {}

  [[nodiscard]] std::size_t read(std::span<std::uint8_t> bytes) override {
    const std::size_t count = std::min(bytes.size(), bytes_.size() - at_);
    std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(at_), count, bytes.begin());
    at_ += count;
    return count;
  }
  void write(std::span<const std::uint8_t> bytes) override {
    writeAt(at_, bytes);
    at_ += bytes.size();
  }
  void writeAt(std::uint64_t place, std::span<const std::uint8_t> bytes) override {
    bytes_.resize(std::max<std::size_t>(bytes_.size(), place + bytes.size()));
    std::copy(bytes.begin(), bytes.end(), bytes_.begin() + static_cast<std::ptrdiff_t>(place));
  }
  [[nodiscard]] std::uint64_t length() const override { return bytes_.size(); }
  [[nodiscard]] const Octets& bytes() const { return bytes_; }

 private:
  Octets bytes_;
  std::size_t at_ = 0;
};

/// All that a stream gives, read in pieces of a size.
inline Octets readAll(ORLFoundation::ArchiveByteStream& stream, std::size_t pieceBytes = 1000) {
  Octets all, piece(pieceBytes);
  while (const std::size_t count = stream.read(piece))
    all.insert(all.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(count));
  return all;
}

/// Random bytes that a test foretells: each call is answered by the next script, and fails behind
/// the last.
class ScriptedRandomBytes {
 public:
  using Script = std::function<std::uint8_t(std::size_t index)>;
  explicit ScriptedRandomBytes(std::deque<Script> scripts)
      : before_(ORLFoundation::SecSetRandomSource(std::make_shared<Source>(std::move(scripts)))) {}
  ~ScriptedRandomBytes() { ORLFoundation::SecSetRandomSource(std::move(before_)); }
  ScriptedRandomBytes(const ScriptedRandomBytes&) = delete;
  ScriptedRandomBytes& operator=(const ScriptedRandomBytes&) = delete;

  static Script all(std::uint8_t byte) {
    return [byte](std::size_t) { return byte; };
  }
  static Script from(std::uint8_t first) {
    return [first](std::size_t index) { return static_cast<std::uint8_t>(first + index); };
  }

 private:
  class Source final : public ORLFoundation::SecRandomSource {
   public:
    explicit Source(std::deque<Script> scripts) : scripts_(std::move(scripts)) {}
    bool copyBytes(std::span<std::uint8_t> bytes) override {
      if (scripts_.empty()) {
        errno = EIO;
        return false;
      }
      for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = scripts_.front()(i);
      scripts_.pop_front();
      return true;
    }

   private:
    std::deque<Script> scripts_;
  };

  std::shared_ptr<ORLFoundation::SecRandomSource> before_;
};

/// The code of `ArchiveErrorDomain` that work throws; 0 where it throws nothing.
template <class Work>
ORLFoundation::NSInteger archiveErrorOf(const Work& work) {
  try {
    work();
  } catch (const ORLFoundation::ArchiveError& failure) {
    EXPECT_EQ(failure.error()->domain(), ORLFoundation::ArchiveErrorDomain) << failure.what();
    return failure.error()->code();
  }
  return 0;
}

}  // namespace orlftest
