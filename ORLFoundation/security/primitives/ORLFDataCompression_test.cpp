#include <ORLFoundation/security/primitives/ORLFDataCompression.h>

#include <ORLFoundation/security/primitives/internal/CompressionLevel.h>
#include <gtest/gtest.h>
#include <zlib.h>

#include <cmath>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {
namespace {

using internal::primitives::compressionLevel;

NSData dataOf(std::string_view text) { return NSData(text); }

std::string noise(std::size_t size) {
  std::mt19937 random(11);
  std::string text(size, '\0');
  for (char& c : text) c = static_cast<char>(random());
  return text;
}

/// What zlib itself makes at a level.
NSData zlibStream(std::string_view text, int level, int window) {
  z_stream stream{};
  EXPECT_EQ(deflateInit2(&stream, level, Z_DEFLATED, window, 8, Z_DEFAULT_STRATEGY), Z_OK);
  std::vector<std::uint8_t> output(deflateBound(&stream, text.size()));
  std::vector<std::uint8_t> input(text.begin(), text.end());
  stream.next_in = input.data();
  stream.avail_in = static_cast<uInt>(input.size());
  stream.next_out = output.data();
  stream.avail_out = static_cast<uInt>(output.size());
  EXPECT_EQ(deflate(&stream, Z_FINISH), Z_STREAM_END);
  output.resize(stream.total_out);
  deflateEnd(&stream);
  return NSData(std::move(output));
}

TEST(DataCompression, TakesLevelsAsNinths) {
  EXPECT_EQ(compressionLevel(0.5F), 5);
  EXPECT_EQ(compressionLevel(1.0F), 9);
  EXPECT_EQ(compressionLevel(0.0F), 0);
  EXPECT_EQ(compressionLevel(-0.0F), 0);
  EXPECT_EQ(compressionLevel(-0.1F), -1);
  EXPECT_EQ(compressionLevel(-std::numeric_limits<float>::infinity()), -1);
  EXPECT_EQ(compressionLevel(1.05F), 9);
  EXPECT_EQ(compressionLevel(1.06F), 10);
  EXPECT_EQ(compressionLevel(1.5F), 14) << "13.5, away from zero";
  EXPECT_EQ(compressionLevel(100.0F), 900);
  for (const float argument : {1e30F, std::numeric_limits<float>::infinity(),
                               std::numeric_limits<float>::quiet_NaN(), 2.4e8F})
    EXPECT_EQ(compressionLevel(argument), 1 << 30) << argument;
}

TEST(DataCompression, WritesWhatZlibWrites) {
  const std::string text = std::string(100'000, 'x') + noise(40'000) + std::string(16384, 'y');
  // At level 0, how the bytes are cut into stored pieces hangs on the room for them.
  for (int level = 1; level <= 9; ++level)
    EXPECT_EQ(gzippedDataWithCompressionLevel(dataOf(text), static_cast<float>(level) / 9),
              zlibStream(text, level, 31))
        << level;
  const auto stored = gzippedDataWithCompressionLevel(dataOf(text), 0.0F);
  EXPECT_GT(stored->length(), text.size());
  EXPECT_EQ(gunzippedData(*stored), dataOf(text));
  EXPECT_EQ(gzippedData(dataOf(text)), zlibStream(text, -1, 31));
  EXPECT_EQ(gzippedDataWithCompressionLevel(dataOf(text), -1.0F), gzippedData(dataOf(text)));
}

TEST(DataCompression, ReadsBackWhatItWritesOfEverySize) {
  constexpr std::size_t kSizes[] = {1, 2, 17, 16383, 16384, 16385, 32768, 100'000, 1'000'000};
  for (const std::size_t size : kSizes)
    for (const std::string& text : {std::string(size, 'a'), noise(size)}) {
      const auto packed = gzippedData(dataOf(text));
      ASSERT_TRUE(packed);
      EXPECT_EQ(gunzippedData(*packed), dataOf(text)) << size;
    }
}

TEST(DataCompression, GivesNilForNoBytesAndForLevelsAboveNine) {
  EXPECT_EQ(gzippedData(NSData()), std::nullopt);
  EXPECT_EQ(gunzippedData(NSData()), std::nullopt);
  EXPECT_EQ(gzippedDataWithCompressionLevel(dataOf("a"), 1.1F), std::nullopt);
  EXPECT_EQ(gzippedDataWithCompressionLevel(dataOf("a"), std::nanf("")), std::nullopt);
}

TEST(DataCompression, GivesNilForMoreThanTheMost) {
  const NSData packed = *gzippedData(dataOf(std::string(1'000'000, 'a')));
  EXPECT_EQ(gunzippedData(packed, 999'999), std::nullopt);
  EXPECT_EQ(gunzippedData(packed, 1'000'000)->length(), 1'000'000U);
  EXPECT_EQ(gunzippedData(packed, 0), std::nullopt);
}

TEST(DataCompression, ReadsZlibStreamsToo) {
  EXPECT_EQ(gunzippedData(zlibStream("text", 6, 15)), dataOf("text"));
  EXPECT_EQ(gunzippedData(zlibStream("text", 6, 31)), dataOf("text"));
  EXPECT_EQ(gunzippedData(zlibStream("text", 6, -15)), std::nullopt);
}

TEST(DataCompression, RefusesStreamsThatAreCutOrDamaged) {
  const NSData packed = *gzippedData(dataOf(noise(1000)));
  for (std::size_t size = 0; size < packed.length(); ++size)
    ASSERT_EQ(gunzippedData(NSData(packed.bytes().first(size))), std::nullopt) << size;
  for (std::size_t at = 0; at < packed.length(); ++at) {
    std::vector<std::uint8_t> bytes(packed.bytes().begin(), packed.bytes().end());
    bytes[at] ^= 0xFF;
    const auto read = gunzippedData(NSData(bytes));
    // Names, times and systems in the head are passed over.
    ASSERT_TRUE(!read || at < 10) << at;
  }
}

TEST(DataCompression, PassesOverWhatStandsBehindTheStream) {
  const NSData packed = *gzippedData(dataOf("text"));
  std::vector<std::uint8_t> bytes(packed.bytes().begin(), packed.bytes().end());
  bytes.insert(bytes.end(), {1, 2, 3});
  std::size_t used = 7;
  EXPECT_EQ(gunzippedData(NSData(bytes), 4, &used), dataOf("text"));
  EXPECT_EQ(used, packed.length());
  EXPECT_EQ(gunzippedData(packed, 4, &used), dataOf("text"));
  EXPECT_EQ(used, packed.length());
  used = 7;
  EXPECT_EQ(gunzippedData(packed, 3, &used), std::nullopt);
  EXPECT_EQ(used, 7U);
}

TEST(DataCompression, GrowsAsFarAsTheStreamSays) {
  const std::string text(10'000'000, 'z');
  const NSData packed = *gzippedDataWithCompressionLevel(dataOf(text), 1.0F);
  EXPECT_LT(packed.length(), 12'000U);
  EXPECT_EQ(gunzippedData(packed), dataOf(text));
}

}  // namespace
}  // namespace ORLFoundation
