#include <ORLFoundation/platform/compression/internal/LZVN.h>

#include <ORLFoundation/platform/compression/LZFSE_testing.h>
#include <gtest/gtest.h>

#include <optional>

namespace ORLFoundation::internal::compression {
namespace {

using orlftest::Bytes;

const Bytes kEnd{6, 0, 0, 0, 0, 0, 0, 0};

/// What an operation stands for, told bit by bit; nil for one that is undefined. `next` are the
/// bytes behind it.
struct Operation {
  std::size_t bytes = 1;
  std::size_t run = 0;
  std::size_t length = 0;
  std::optional<std::size_t> distance = {};
};
std::optional<Operation> operationOf(unsigned code, unsigned first, unsigned second) {
  const unsigned pair = first | second << 8;
  if (code == 0x0e || code == 0x16) return Operation{};
  if (code == 0xe0) return Operation{.bytes = 2, .run = first + 16};
  if (code > 0xe0 && code < 0xf0) return Operation{.run = code - 0xe0};
  if (code == 0xf0) return Operation{.bytes = 2, .length = first + 16};
  if (code > 0xf0) return Operation{.length = code - 0xf0};
  if (code >= 0xa0 && code < 0xc0)
    return Operation{3, code / 8 % 4, (code % 8) * 4 + pair % 4 + 3, pair / 4};
  if ((code >= 0x70 && code < 0x80) || (code >= 0xd0 && code < 0xe0)) return std::nullopt;
  const Operation whole{1, code / 64, code / 8 % 8 + 3, std::nullopt};
  if (code % 8 == 7) return Operation{3, whole.run, whole.length, pair};
  if (code % 8 < 6) return Operation{2, whole.run, whole.length, code % 8 * 256 + first};
  if (code < 0x40) return std::nullopt;
  return whole;
}

// Every first byte behind 300 literals, with a last distance of 5.
TEST(LZVN, ReadsEveryOperation) {
  Bytes start{0xe0, 255, 0xe0, 13};
  const Bytes letters = orlftest::randomBytes(271 + 29, 256, 3);
  start.insert(start.begin() + 2, letters.begin(), letters.begin() + 271);
  start.insert(start.end(), letters.begin() + 271, letters.end());
  start.insert(start.end(), {0x00, 5});  // three bytes, five back
  Bytes before = letters;
  for (int i = 0; i < 3; ++i) before.push_back(before[before.size() - 5]);
  unsigned undefined = 0;
  for (unsigned code = 0; code < 256; ++code) {
    if (code == 6) continue;
    const unsigned first = 0x45, second = 0;
    const auto operation = operationOf(code, first, second);
    Bytes payload = start;
    payload.push_back(static_cast<std::uint8_t>(code));
    if (operation && operation->bytes > 1) payload.push_back(first);
    if (operation && operation->bytes > 2) payload.push_back(second);
    Bytes expected = before;
    for (std::size_t i = 0; operation && i < operation->run; ++i) {
      payload.push_back(static_cast<std::uint8_t>(i));
      expected.push_back(static_cast<std::uint8_t>(i));
    }
    const std::size_t distance = operation ? operation->distance.value_or(5) : 5;
    const bool isInReach = distance <= expected.size();
    for (std::size_t i = 0; operation && isInReach && i < operation->length; ++i)
      expected.push_back(expected[expected.size() - distance]);
    payload.insert(payload.end(), kEnd.begin(), kEnd.end());
    Bytes output(expected.size());
    const bool isRead =
        decodeLZVN(payload, output.data(), output.data(), output.data() + output.size());
    EXPECT_EQ(isRead, operation.has_value() && isInReach) << code;
    EXPECT_TRUE(!isRead || output == expected) << code;
    undefined += operation ? 0 : 1;
    for (std::size_t cut = 1; operation && cut <= payload.size() - start.size(); ++cut)
      EXPECT_FALSE(decodeLZVN(std::span(payload).first(payload.size() - cut), output.data(),
                              output.data(), output.data() + output.size()))
          << code << " cut by " << cut;
  }
  EXPECT_EQ(undefined, 5U + 16 + 16);
}

TEST(LZVN, WritesMatchesOfEveryLengthAndDistance) {
  for (const std::size_t distance :
       {1U, 2U, 3U, 255U, 1535U, 1536U, 4000U, 16383U, 16384U, 40000U}) {
    for (const std::size_t length : {3U, 4U, 9U, 10U, 11U, 25U, 34U, 35U, 281U, 282U, 1000U}) {
      for (const std::size_t run : {0U, 1U, 2U, 3U, 4U, 15U, 16U, 271U, 272U, 300U}) {
        Bytes bytes = orlftest::randomBytes(distance + 8, 256, 11);
        const Bytes literals = orlftest::randomBytes(run, 256, 12);
        bytes.insert(bytes.end(), literals.begin(), literals.end());
        for (std::size_t i = 0; i < length; ++i) bytes.push_back(bytes[bytes.size() - distance]);
        bytes.insert(bytes.end(), literals.rbegin(), literals.rend());
        Bytes payload;
        appendLZVN(bytes, payload);
        Bytes output(bytes.size());
        ASSERT_TRUE(
            decodeLZVN(payload, output.data(), output.data(), output.data() + output.size()))
            << distance << ", " << length << ", " << run;
        ASSERT_EQ(output, bytes) << distance << ", " << length << ", " << run;
      }
    }
  }
}

}  // namespace
}  // namespace ORLFoundation::internal::compression
