#include <ORLFoundation/platform/compression/LZFSE.h>
#include <ORLFoundation/platform/compression/LZFSE_testing.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace ORLFoundation::internal::compression {
namespace {

using orlftest::Bytes;

/// Pieces of what came before, at every distance, among random bytes.
Bytes patchwork(std::size_t count, unsigned seed) {
  orlftest::RandomNumbers random(seed);
  Bytes bytes = orlftest::randomBytes(16, 256, seed);
  while (bytes.size() < count) {
    const std::size_t length = random() % 4 == 0 ? random() % 5000 : random() % 60;
    if (random() % 3 == 0) {
      for (std::size_t i = 0; i < std::min<std::size_t>(length, 900); ++i)
        bytes.push_back(static_cast<std::uint8_t>(random()));
    } else {
      const std::size_t distance = 1 + random() % bytes.size();
      for (std::size_t i = 0; i < length; ++i) bytes.push_back(bytes[bytes.size() - distance]);
    }
  }
  bytes.resize(count);
  return bytes;
}

TEST(LZFSE, GivesBackWhatWasPacked) {
  LZFSEEncoder encoder;
  LZFSEDecoder decoder;
  orlftest::RandomNumbers random(3);
  for (unsigned round = 0; round < 400; ++round) {
    const std::size_t count = round < 40 ? round : random() % (round % 8 == 0 ? 300000 : 9000);
    const Bytes bytes = round % 2 == 0 ? patchwork(count, round)
                                       : orlftest::randomBytes(count, 1U << (round % 9), round);
    Bytes stream;
    encoder.append(bytes, stream);
    ASSERT_LE(stream.size(), count + 12);
    ASSERT_EQ(decoder.decoded(stream, count), bytes) << "round " << round;
  }
}

TEST(LZFSE, GivesBackMatchesAtTheEdgesOfItsReach) {
  for (const std::size_t distance : {262138U, 262139U, 262140U, 262141U}) {
    Bytes bytes = orlftest::randomBytes(distance, 256, 5);
    bytes.insert(bytes.end(), bytes.begin(), bytes.begin() + 3000);
    EXPECT_EQ(orlftest::unpacked(orlftest::packed(bytes)), bytes) << distance;
  }
  for (const std::size_t run : {314U, 315U, 316U, 630U, 2358U, 2359U, 2360U, 4719U}) {
    Bytes bytes = orlftest::randomBytes(run, 256, 6);
    bytes.resize(bytes.size() + run, 7);
    bytes.insert(bytes.end(), bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(run));
    bytes.resize(std::max<std::size_t>(bytes.size(), 5000), 9);
    EXPECT_EQ(orlftest::unpacked(orlftest::packed(bytes)), bytes) << run;
  }
}

// Whatever is changed or cut off, the answer is bytes of the stated length or nil.
TEST(LZFSE, TakesDamagedStreams) {
  orlftest::RandomNumbers random(9);
  LZFSEDecoder decoder;
  std::size_t refused = 0, rounds = 0;
  for (const std::size_t count : {300U, 6000U, 90000U}) {
    const Bytes bytes = orlftest::ledgerText(count);
    const Bytes stream = orlftest::packed(bytes);
    for (unsigned round = 0; round < 300; ++round, ++rounds) {
      Bytes damaged = stream;
      for (unsigned i = 0; i <= round % 4; ++i)
        damaged[random() % std::min<std::size_t>(damaged.size(), 900)] ^=
            static_cast<std::uint8_t>(1U << random() % 8);
      if (round % 5 == 0) damaged.resize(random() % damaged.size());
      Bytes output(count);
      if (!decoder.decode(damaged, output)) ++refused;
      const auto decoded = decoder.decoded(damaged, 200000);
      EXPECT_LE(decoded ? decoded->size() : 0, 200000U);
    }
  }
  EXPECT_GT(refused, rounds / 5);
}

}  // namespace
}  // namespace ORLFoundation::internal::compression
