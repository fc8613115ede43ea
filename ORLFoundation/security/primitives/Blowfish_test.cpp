#include <ORLFoundation/security/primitives/Blowfish.h>

#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/security/primitives/ORLFDataBlowfish.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

extern "C" int32_t orlf_test_blowfish_from_c(void);

namespace ORLFoundation {
namespace {

struct PublishedRow {
  const char *key, *plain, *cipher;
};

/// The published rows: 34 keys of eight bytes, then keys of 1 to 24 bytes.
constexpr PublishedRow kPublished[] = {
    {"0000000000000000", "0000000000000000", "4EF997456198DD78"},
    {"FFFFFFFFFFFFFFFF", "FFFFFFFFFFFFFFFF", "51866FD5B85ECB8A"},
    {"3000000000000000", "1000000000000001", "7D856F9A613063F2"},
    {"1111111111111111", "1111111111111111", "2466DD878B963C9D"},
    {"0123456789ABCDEF", "1111111111111111", "61F9C3802281B096"},
    {"1111111111111111", "0123456789ABCDEF", "7D0CC630AFDA1EC7"},
    {"0000000000000000", "0000000000000000", "4EF997456198DD78"},
    {"FEDCBA9876543210", "0123456789ABCDEF", "0ACEAB0FC6A0A28D"},
    {"7CA110454A1A6E57", "01A1D6D039776742", "59C68245EB05282B"},
    {"0131D9619DC1376E", "5CD54CA83DEF57DA", "B1B8CC0B250F09A0"},
    {"07A1133E4A0B2686", "0248D43806F67172", "1730E5778BEA1DA4"},
    {"3849674C2602319E", "51454B582DDF440A", "A25E7856CF2651EB"},
    {"04B915BA43FEB5B6", "42FD443059577FA2", "353882B109CE8F1A"},
    {"0113B970FD34F2CE", "059B5E0851CF143A", "48F4D0884C379918"},
    {"0170F175468FB5E6", "0756D8E0774761D2", "432193B78951FC98"},
    {"43297FAD38E373FE", "762514B829BF486A", "13F04154D69D1AE5"},
    {"07A7137045DA2A16", "3BDD119049372802", "2EEDDA93FFD39C79"},
    {"04689104C2FD3B2F", "26955F6835AF609A", "D887E0393C2DA6E3"},
    {"37D06BB516CB7546", "164D5E404F275232", "5F99D04F5B163969"},
    {"1F08260D1AC2465E", "6B056E18759F5CCA", "4A057A3B24D3977B"},
    {"584023641ABA6176", "004BD6EF09176062", "452031C1E4FADA8E"},
    {"025816164629B007", "480D39006EE762F2", "7555AE39F59B87BD"},
    {"49793EBC79B3258F", "437540C8698F3CFA", "53C55F9CB49FC019"},
    {"4FB05E1515AB73A7", "072D43A077075292", "7A8E7BFA937E89A3"},
    {"49E95D6D4CA229BF", "02FE55778117F12A", "CF9C5D7A4986ADB5"},
    {"018310DC409B26D6", "1D9D5C5018F728C2", "D1ABB290658BC778"},
    {"1C587F1C13924FEF", "305532286D6F295A", "55CB3774D13EF201"},
    {"0101010101010101", "0123456789ABCDEF", "FA34EC4847B268B2"},
    {"1F1F1F1F0E0E0E0E", "0123456789ABCDEF", "A790795108EA3CAE"},
    {"E0FEE0FEF1FEF1FE", "0123456789ABCDEF", "C39E072D9FAC631D"},
    {"0000000000000000", "FFFFFFFFFFFFFFFF", "014933E0CDAFF6E4"},
    {"FFFFFFFFFFFFFFFF", "0000000000000000", "F21E9A77B71C49BC"},
    {"0123456789ABCDEF", "0000000000000000", "245946885754369A"},
    {"FEDCBA9876543210", "FFFFFFFFFFFFFFFF", "6B5C5A9C5D9E0A5A"},
    {"F0", "FEDCBA9876543210", "F9AD597C49DB005E"},
    {"F0E1", "FEDCBA9876543210", "E91D21C1D961A6D6"},
    {"F0E1D2", "FEDCBA9876543210", "E9C2B70A1BC65CF3"},
    {"F0E1D2C3", "FEDCBA9876543210", "BE1E639408640F05"},
    {"F0E1D2C3B4", "FEDCBA9876543210", "B39E44481BDB1E6E"},
    {"F0E1D2C3B4A5", "FEDCBA9876543210", "9457AA83B1928C0D"},
    {"F0E1D2C3B4A596", "FEDCBA9876543210", "8BB77032F960629D"},
    {"F0E1D2C3B4A59687", "FEDCBA9876543210", "E87A244E2CC85E82"},
    {"F0E1D2C3B4A5968778", "FEDCBA9876543210", "15750E7A4F4EC577"},
    {"F0E1D2C3B4A596877869", "FEDCBA9876543210", "122BA70B3AB64AE0"},
    {"F0E1D2C3B4A5968778695A", "FEDCBA9876543210", "3A833C9AFFC537F6"},
    {"F0E1D2C3B4A5968778695A4B", "FEDCBA9876543210", "9409DA87A90F6BF2"},
    {"F0E1D2C3B4A5968778695A4B3C", "FEDCBA9876543210", "884F80625060B8B4"},
    {"F0E1D2C3B4A5968778695A4B3C2D", "FEDCBA9876543210", "1F85031C19E11968"},
    {"F0E1D2C3B4A5968778695A4B3C2D1E", "FEDCBA9876543210", "79D9373A714CA34F"},
    {"F0E1D2C3B4A5968778695A4B3C2D1E0F", "FEDCBA9876543210", "93142887EE3BE15C"},
    {"F0E1D2C3B4A5968778695A4B3C2D1E0F00", "FEDCBA9876543210", "03429E838CE2D14B"},
    {"F0E1D2C3B4A5968778695A4B3C2D1E0F0011", "FEDCBA9876543210", "A4299E27469FF67B"},
    {"F0E1D2C3B4A5968778695A4B3C2D1E0F001122", "FEDCBA9876543210", "AFD5AED1C1BC96A8"},
    {"F0E1D2C3B4A5968778695A4B3C2D1E0F00112233", "FEDCBA9876543210", "10851C0E3858DA9F"},
    {"F0E1D2C3B4A5968778695A4B3C2D1E0F0011223344", "FEDCBA9876543210", "E6F51ED79B9DB21F"},
    {"F0E1D2C3B4A5968778695A4B3C2D1E0F001122334455", "FEDCBA9876543210", "64A6E14AFD36B46F"},
    {"F0E1D2C3B4A5968778695A4B3C2D1E0F00112233445566", "FEDCBA9876543210", "80C7D7D45A5479AD"},
    {"F0E1D2C3B4A5968778695A4B3C2D1E0F0011223344556677", "FEDCBA9876543210", "05044B62FA52D080"},
};

BLOWFISH_CTX scheduleOf(const std::string& key) {
  BLOWFISH_CTX context;
  Blowfish_Init(&context, reinterpret_cast<const std::uint8_t*>(key.data()),
                static_cast<std::int32_t>(key.size()));
  return context;
}

std::uint32_t wordOf(const std::string& hex, std::size_t at) {
  return static_cast<std::uint32_t>(std::stoul(hex.substr(at, 8), nullptr, 16));
}

TEST(Blowfish, GivesThePublishedBlocks) {
  for (const PublishedRow& row : kPublished) {
    const BLOWFISH_CTX context = scheduleOf(internal::base::bytesOfHexText(row.key).value());
    std::uint32_t left = wordOf(row.plain, 0);
    std::uint32_t right = wordOf(row.plain, 8);
    Blowfish_Encrypt(&context, &left, &right);
    EXPECT_EQ(left, wordOf(row.cipher, 0)) << row.key;
    EXPECT_EQ(right, wordOf(row.cipher, 8)) << row.key;
    Blowfish_Decrypt(&context, &left, &right);
    EXPECT_EQ(left, wordOf(row.plain, 0)) << row.key;
    EXPECT_EQ(right, wordOf(row.plain, 8)) << row.key;
  }
}

TEST(Blowfish, TestsItself) {
  BLOWFISH_CTX context;
  EXPECT_EQ(Blowfish_Test(&context), 0);
  EXPECT_EQ(orlf_test_blowfish_from_c(), 0);
}

TEST(Blowfish, TakesKeysRoundAndRoundAndNoMoreThan72Bytes) {
  const BLOWFISH_CTX once = scheduleOf("ab");
  const BLOWFISH_CTX twice = scheduleOf("abab");
  EXPECT_EQ(std::memcmp(&once, &twice, sizeof once), 0);
  const BLOWFISH_CTX whole = scheduleOf(std::string(71, 'k') + "x");
  const BLOWFISH_CTX longer = scheduleOf(std::string(71, 'k') + "xy");
  const BLOWFISH_CTX other = scheduleOf(std::string(72, 'k'));
  EXPECT_EQ(std::memcmp(&whole, &longer, sizeof whole), 0);
  EXPECT_NE(std::memcmp(&whole, &other, sizeof whole), 0);
}

TEST(Blowfish, TakesAKeyWithoutBytesForOneOfZeroBits) {
  const BLOWFISH_CTX zero = scheduleOf(std::string(4, '\0'));
  for (const std::int32_t length : {0, -1, INT32_MIN}) {
    BLOWFISH_CTX context;
    Blowfish_Init(&context, nullptr, length);
    EXPECT_EQ(std::memcmp(&zero, &context, sizeof zero), 0) << length;
  }
}

TEST(DataBlowfish, LeavesTheBytesBehindTheLastWholeBlock) {
  const std::string plain = "0123456789abc";
  NSMutableData data{NSData(std::string_view(plain))};
  encryptDataWithBlowfishKey(data, "key");
  EXPECT_NE(data.text().substr(0, 8), plain.substr(0, 8));
  EXPECT_EQ(data.text().substr(8), plain.substr(8));
  decyrptDataWithBlowfishKey(data, "key");
  EXPECT_EQ(data.text(), plain);
}

TEST(DataBlowfish, ReadsWordsInLittleEndianOrder) {
  NSMutableData data{NSData(std::string_view("\x01\0\0\0\x02\0\0\0", 8))};
  encryptDataWithBlowfishKey(data, "TESTKEY");
  EXPECT_EQ(data.text(), std::string_view("\xD2\x3F\x33\xDF\xB4\x1B\xA7\x30", 8));
}

TEST(DataBlowfish, EndsTheKeyAtItsFirstZeroByte) {
  NSMutableData data{NSData(std::string_view("12345678"))};
  NSMutableData cut{NSData(std::string_view("12345678"))};
  encryptDataWithBlowfishKey(data, std::string_view("ab\0cd", 5));
  encryptDataWithBlowfishKey(cut, "ab");
  EXPECT_EQ(data.text(), cut.text());
}

TEST(DataBlowfish, ChangesNothingUnderAnEmptyKey) {
  NSMutableData data{NSData(std::string_view("12345678"))};
  encryptDataWithBlowfishKey(data, "");
  encryptDataWithBlowfishKey(data, std::string_view("\0key", 4));
  decyrptDataWithBlowfishKey(data, "");
  EXPECT_EQ(data.text(), "12345678");
}

}  // namespace
}  // namespace ORLFoundation
