#include <ORLFoundation/security/archives/internal/KeyRecord.h>

#include <ORLFoundation/platform/container/ArchiveError.h>
#include <ORLFoundation/security/archives/AppleArchive_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation::internal::archives {
namespace {

using orlftest::kCheapCost;
using orlftest::Outcome;
using orlftest::outcomeOf;
using orlftest::secret;
using Record = std::vector<std::uint8_t>;

Outcome opening(const Record& record, std::string_view password = "x") {
  return outcomeOf([&] { static_cast<void>(archiveKeyOfRecord(record, secret(password))); });
}

void put(Record& record, std::size_t at, std::uint64_t value, std::size_t width) {
  for (std::size_t i = 0; i < width; ++i)
    record[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

TEST(KeyRecord, GivesTheKeyForThePasswordAlone) {
  const SymmetricKey key(SymmetricKeySize::bits256);
  const Record record = keyRecord(key, secret("x"), kCheapCost);
  EXPECT_EQ(record.size(), 112U);
  EXPECT_TRUE(archiveKeyOfRecord(record, secret("x")) == key);
  for (const char* password : {"", "X", "x ", "xx"})
    EXPECT_TRUE(opening(record, password).is(ArchiveErrorDomain, ArchiveErrorWrongKey)) << password;
}

TEST(KeyRecord, RefusesEveryChange) {
  const Record record = keyRecord(SymmetricKey(SymmetricKeySize::bits256), secret("x"), kCheapCost);
  for (std::size_t at = 0; at < record.size(); ++at) {
    if (at >= 20 && at < 36) continue;  // the cost, below
    for (const unsigned bit : {0U, 7U}) {
      Record changed = record;
      changed[at] ^= static_cast<std::uint8_t>(1U << bit);
      EXPECT_TRUE(opening(changed).is(ArchiveErrorDomain, ArchiveErrorWrongKey)) << at;
    }
  }
  for (std::size_t length = 1; length < record.size(); ++length)
    EXPECT_TRUE(
        opening(Record(record.begin(), record.begin() + static_cast<std::ptrdiff_t>(length)))
            .is(ArchiveErrorDomain, ArchiveErrorWrongKey));
  EXPECT_TRUE(opening({}).is(ArchiveErrorDomain, ArchiveErrorUnsupported));
}

TEST(KeyRecord, BoundsWhatItMayAskFor) {
  struct Row {
    std::uint64_t n, r, p;
    ArchiveErrorCode code;
  };
  const Row rows[] = {
      {0, 1, 1, ArchiveErrorWrongKey},
      {1, 1, 1, ArchiveErrorWrongKey},
      {17, 1, 1, ArchiveErrorWrongKey},
      {16, 0, 1, ArchiveErrorWrongKey},
      {16, 1, 0, ArchiveErrorWrongKey},
      {32, 1, 1, ArchiveErrorWrongKey},  // within bounds: the seal tells
      {16, 2, 1, ArchiveErrorWrongKey},
      {16, 1, 2, ArchiveErrorWrongKey},
      {std::uint64_t{1} << 18, 8, 1, ArchiveErrorTooLarge},  // 256 MiB and a little
      {std::uint64_t{1} << 63, 1, 1, ArchiveErrorTooLarge},
      {16, UINT32_MAX, 1, ArchiveErrorTooLarge},
      {16, 1, UINT32_MAX, ArchiveErrorTooLarge},
      {16, 1, 1 << 19, ArchiveErrorTooLarge},  // work, not memory
      {std::uint64_t{1} << 32, std::uint64_t{1} << 31, 1, ArchiveErrorTooLarge},
  };
  const Record record = keyRecord(SymmetricKey(SymmetricKeySize::bits256), secret("x"), kCheapCost);
  for (const Row& row : rows) {
    Record changed = record;
    put(changed, 20, row.n, 8);
    put(changed, 28, row.r, 4);
    put(changed, 32, row.p, 4);
    const Outcome outcome = opening(changed);
    EXPECT_TRUE(outcome.is(ArchiveErrorDomain, row.code))
        << row.n << ", " << row.r << ", " << row.p << ": " << outcome.text;
  }
}

TEST(KeyRecord, CostsWhatIsTold) {
  EXPECT_EQ(kPasswordCost.n, 131072U);
  EXPECT_EQ(kPasswordCost.r, 8U);
  EXPECT_EQ(kPasswordCost.p, 1U);
  EXPECT_LT(128 * kPasswordCost.r * (kPasswordCost.n + 3), kMostMemory);
}

}  // namespace
}  // namespace ORLFoundation::internal::archives
