#include <ORLFoundation/platform/net/internal/BodyDecoder.h>

#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace ORLFoundation::internal::net;

constexpr int kGzip = 31, kWrapped = 15, kBare = -15;

std::string packed(const std::string& text, int window) {
  z_stream stream{};
  EXPECT_EQ(deflateInit2(&stream, 6, Z_DEFLATED, window, 8, Z_DEFAULT_STRATEGY), Z_OK);
  std::string bytes(text.size() + 200, '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
  stream.avail_out = static_cast<uInt>(bytes.size());
  EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
  bytes.resize(bytes.size() - stream.avail_out);
  deflateEnd(&stream);
  return bytes;
}

struct Decoded {
  std::string text;
  bool isBroken = false;
  bool isWhole = false;
  friend bool operator==(const Decoded&, const Decoded&) = default;
};

std::ostream& operator<<(std::ostream& stream, const Decoded& decoded) {
  return stream << decoded.text.size() << " bytes, broken " << decoded.isBroken << ", whole "
                << decoded.isWhole;
}

/// In pieces of so many bytes, by a receiver that takes each time but every n-th.
Decoded decoded(std::string_view bytes, BodyEncoding encoding, std::size_t piece = 16384,
                int refuses = 0) {
  BodyDecoder decoder(encoding);
  Decoded result;
  int calls = 0;
  const auto receive = [&](std::span<const std::uint8_t> decodedBytes) {
    EXPECT_FALSE(decodedBytes.empty());
    if (refuses > 0 && ++calls % refuses == 0) return false;
    result.text.append(decodedBytes.begin(), decodedBytes.end());
    return true;
  };
  while (!bytes.empty() && !result.isBroken) {
    const std::string_view next = bytes.substr(0, piece);
    const std::span<const std::uint8_t> given(reinterpret_cast<const std::uint8_t*>(next.data()),
                                              next.size());
    switch (decoder.decode(given, receive)) {
      case BodyDecoder::Outcome::Read:
        bytes.remove_prefix(next.size());
        break;
      case BodyDecoder::Outcome::Held:
        break;
      case BodyDecoder::Outcome::Broken:
        result.isBroken = true;
        break;
    }
  }
  result.isWhole = decoder.isWhole();
  return result;
}

std::string randomText(std::size_t size, unsigned seed) {
  std::minstd_rand random(seed);
  std::string text(size, '\0');
  for (char& byte : text) byte = static_cast<char>('a' + random() % 9);
  return text;
}

TEST(BodyEncoding, IsNamedInAnyCase) {
  struct Row {
    const char* field;
    BodyEncoding encoding;
  };
  const Row rows[] = {
      {"", BodyEncoding::None},
      {"  ", BodyEncoding::None},
      {"identity", BodyEncoding::None},
      {"gzip", BodyEncoding::Gzip},
      {" GZip ", BodyEncoding::Gzip},
      {"x-gzip", BodyEncoding::Gzip},
      {"deflate", BodyEncoding::Deflate},
      {"Deflate", BodyEncoding::Deflate},
      {"br", BodyEncoding::Unknown},
      {"gzip, gzip", BodyEncoding::Unknown},
      {"compress", BodyEncoding::Unknown},
      {"gzipx", BodyEncoding::Unknown},
  };
  for (const Row& row : rows) EXPECT_EQ(bodyEncodingIn(row.field), row.encoding) << row.field;
}

TEST(BodyDecoder, GivesTheSameInPiecesOfAnySizeAndWhereNobodyTakesThem) {
  const std::string text = randomText(20'000, 1) + std::string(300'000, 'z');
  for (const auto& [window, encoding] :
       {std::pair(kGzip, BodyEncoding::Gzip), std::pair(kWrapped, BodyEncoding::Deflate),
        std::pair(kBare, BodyEncoding::Deflate)}) {
    const std::string bytes = packed(text, window);
    for (const std::size_t piece :
         {std::size_t{1}, std::size_t{7}, std::size_t{16384}, bytes.size()})
      for (const int refuses : {0, 2, 3})
        EXPECT_EQ(decoded(bytes, encoding, piece, refuses), (Decoded{text, false, true}))
            << window << ' ' << piece << ' ' << refuses;
  }
}

TEST(BodyDecoder, KnowsABodyThatIsCutOffAnywhere) {
  const std::string text = randomText(300, 2);
  for (const auto& [window, encoding] :
       {std::pair(kGzip, BodyEncoding::Gzip), std::pair(kWrapped, BodyEncoding::Deflate),
        std::pair(kBare, BodyEncoding::Deflate)}) {
    const std::string bytes = packed(text, window);
    for (std::size_t length = 0; length < bytes.size(); ++length) {
      const Decoded cut = decoded(std::string_view(bytes).substr(0, length), encoding, 5);
      EXPECT_FALSE(cut.isBroken) << window << ' ' << length;
      EXPECT_FALSE(cut.isWhole) << window << ' ' << length;
      EXPECT_EQ(text.rfind(cut.text, 0), 0U);
    }
    EXPECT_TRUE(decoded(bytes, encoding, 5).isWhole);
  }
}

TEST(BodyDecoder, RefusesEveryChangedByteOfABodyWithASum) {
  const std::string text = randomText(100, 3);
  for (const auto& [window, encoding] :
       {std::pair(kGzip, BodyEncoding::Gzip), std::pair(kWrapped, BodyEncoding::Deflate)}) {
    const std::string bytes = packed(text, window);
    for (std::size_t index = 0; index < bytes.size(); ++index) {
      // Time, level and system of a gzip header are not looked at.
      if (window == kGzip && index >= 4 && index < 10) continue;
      std::string other = bytes;
      other[index] = static_cast<char>(other[index] ^ 0x55);
      const Decoded result = decoded(other, encoding);
      EXPECT_TRUE(result.isBroken || !result.isWhole) << window << ' ' << index;
    }
  }
}

TEST(BodyDecoder, TakesGzipStreamsInARowAndNothingElseAfterThem) {
  const std::string one = packed("one ", kGzip), two = packed("two", kGzip);
  for (const std::size_t piece : {std::size_t{1}, std::size_t{1000}}) {
    EXPECT_EQ(decoded(one + two, BodyEncoding::Gzip, piece), (Decoded{"one two", false, true}));
    EXPECT_FALSE(decoded(one + two.substr(0, 9), BodyEncoding::Gzip, piece).isWhole);
    EXPECT_TRUE(decoded(one + "x", BodyEncoding::Gzip, piece).isBroken);
    EXPECT_TRUE(decoded(one + std::string(1, '\0'), BodyEncoding::Gzip, piece).isBroken);
    EXPECT_TRUE(decoded(one + "\x1Fz", BodyEncoding::Gzip, piece).isBroken);
    const std::string wrapped = packed("one", kWrapped);
    EXPECT_TRUE(decoded(wrapped + wrapped, BodyEncoding::Deflate, piece).isBroken);
  }
}

TEST(BodyDecoder, RefusesWhatIsOfAnotherEncoding) {
  for (const std::string_view bytes : {"plain text", "\xFF\xFF\xFF\xFF"}) {
    EXPECT_TRUE(decoded(bytes, BodyEncoding::Gzip).isBroken);
    EXPECT_TRUE(decoded(bytes, BodyEncoding::Deflate).isBroken);
  }
  EXPECT_TRUE(decoded(packed("x", kWrapped), BodyEncoding::Gzip).isBroken);
  EXPECT_TRUE(decoded(packed("x", kGzip), BodyEncoding::Deflate).isBroken);
}

TEST(BodyDecoder, HoldsNoMoreThanAPieceOfABodyThatSwells) {
  const std::string bytes = packed(std::string(4'000'000, '\0'), kGzip);
  ASSERT_LT(bytes.size(), 10'000U);
  auto decoder = std::make_unique<BodyDecoder>(BodyEncoding::Gzip);
  std::size_t most = 0, total = 0;
  const auto receive = [&](std::span<const std::uint8_t> piece) {
    most = std::max(most, piece.size());
    total += piece.size();
    return true;
  };
  EXPECT_EQ(
      decoder->decode({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, receive),
      BodyDecoder::Outcome::Read);
  EXPECT_EQ(total, 4'000'000U);
  EXPECT_LE(most, 65'536U);
}

}  // namespace
