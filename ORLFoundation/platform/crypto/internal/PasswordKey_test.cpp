
#include <ORLFoundation/platform/crypto/internal/PasswordKey.h>

#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <gtest/gtest.h>
#include <openssl/evp.h>
#include <tests/support/Bytes.h>

#include <cstdint>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::crypto {
namespace {

using orlftest::spanOf;

std::string keyOf(std::string_view password, std::string_view salt, std::uint32_t rounds,
                  std::size_t length) {
  std::string key(length, '\0');
  deriveKeyOverSHA1(password, spanOf(salt), rounds,
                    {reinterpret_cast<std::uint8_t*>(key.data()), key.size()});
  return base::hexText(key);
}

TEST(PasswordKey, GivesThePublishedKeys) {
  // RFC 6070.
  EXPECT_EQ(keyOf("password", "salt", 1, 20), "0c60c80f961f0e71f3a9b524af6012062fe037a6");
  EXPECT_EQ(keyOf("password", "salt", 2, 20), "ea6c014dc72d6f8ccd1ed92ace1d41f0d8de8957");
  EXPECT_EQ(keyOf("password", "salt", 4096, 20), "4b007901b765489abead49d926f721d065a429c1");
  EXPECT_EQ(keyOf("password", "salt", 16777216, 20), "eefe3d61cd4da4e4e9945b3d6ba2158c2634e984");
  EXPECT_EQ(keyOf("passwordPASSWORDpassword", "saltSALTsaltSALTsaltSALTsaltSALTsalt", 4096, 25),
            "3d2eec4fe41c849b80c8d83662c0e44a8b291a964cf2f07038");
  EXPECT_EQ(keyOf(std::string_view("pass\0word", 9), std::string_view("sa\0lt", 5), 4096, 16),
            "56fa6aa75548099dcc37d7f03425e0c3");
}

TEST(PasswordKey, AgreesWithAnotherImplementation) {
  std::mt19937 random(2);
  const auto text = [&random](std::size_t most) {
    std::string made(random() % most, '\0');
    for (char& c : made) c = static_cast<char>(random());
    return made;
  };
  for (int round = 0; round < 300; ++round) {
    // A password of more than 64 bytes counts by its digest.
    const std::string password = text(140), salt = text(140);
    const auto rounds = static_cast<std::uint32_t>(1 + random() % 5);
    std::vector<std::uint8_t> expected(1 + random() % 70);
    ASSERT_EQ(PKCS5_PBKDF2_HMAC_SHA1(password.data(), static_cast<int>(password.size()),
                                     spanOf(salt).data(), static_cast<int>(salt.size()),
                                     static_cast<int>(rounds), static_cast<int>(expected.size()),
                                     expected.data()),
              1);
    ASSERT_EQ(keyOf(password, salt, rounds, expected.size()),
              base::hexText({reinterpret_cast<const char*>(expected.data()), expected.size()}));
  }
}

}  // namespace
}  // namespace ORLFoundation::internal::crypto
