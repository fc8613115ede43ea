#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/security/primitives/Blowfish.h>
#include <ORLFoundation/security/primitives/NewBase64.h>
#include <ORLFoundation/security/primitives/ORLFCryptography.h>
#include <ORLFoundation/security/primitives/ORLFDataBase64.h>
#include <ORLFoundation/security/primitives/ORLFDataBlowfish.h>
#include <ORLFoundation/security/primitives/ORLFDataCompression.h>
#include <ORLFoundation/security/primitives/ORLFDataHashing.h>
#include <ORLFoundation/security/primitives/ORLFMD5.h>
#include <ORLFoundation/security/primitives/internal/CompressionLevel.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <regex>
#include <stdexcept>
#include <string>

namespace ORLFoundation {
namespace {

using internal::base::base64Text;
using internal::base::bytesOfBase64Text;
using internal::base::bytesOfHexText;
using internal::base::hexText;
using orlftest::disagreement;
using orlftest::Json;
using orlftest::textOrNil;

NSData dataOf(const Json& base64) {
  const auto bytes = bytesOfBase64Text(base64.get<std::string>());
  if (!bytes) throw std::runtime_error("no Base64: " + base64.dump());
  return NSData(std::string_view(*bytes));
}

std::optional<NSData> optionalData(const Json& base64) {
  if (base64.is_null()) return std::nullopt;
  return dataOf(base64);
}

std::optional<std::string> base64Of(const std::optional<NSData>& data) {
  if (!data) return std::nullopt;
  return base64Text(data->text());
}

/// The bytes that a row describes by a formula of their place and their count.
NSData patternOf(const Json& in) {
  const auto formula = in.at("formula").get<std::string>();
  std::smatch parts;
  if (!std::regex_match(formula, parts, std::regex(R"(byte i is \(i\*(\d+)\+(n|\d+)\) mod 256)")))
    throw std::runtime_error("unknown formula " + formula);
  std::vector<std::uint8_t> bytes(in.at("n").get<std::size_t>());
  const std::size_t factor = std::stoul(parts.str(1));
  const std::size_t first = parts.str(2) == "n" ? bytes.size() : std::stoul(parts.str(2));
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<std::uint8_t>(i * factor + first);
  return NSData(std::move(bytes));
}

std::string md5Of(const NSData& data) {
  std::array<std::uint8_t, 16> digest{};
  ORLFMD5(data.bytes().data(), static_cast<std::uint32_t>(data.length()), digest.data());
  return hexText(NSData(std::span<const std::uint8_t>(digest)).text());
}

std::uint32_t wordOf(const Json& hex) {
  return static_cast<std::uint32_t>(std::stoul(hex.get<std::string>(), nullptr, 16));
}

TEST(SecurityPrimitives, AgreeWithVectorsOfAES) {
  using Operation = std::optional<NSData> (*)(const NSData&, const NSData&,
                                              const std::optional<NSData>&, NSErrorSlot);
  const auto check = [](Operation operation) {
    return [operation](const Json& in, const Json& out) {
      return disagreement(textOrNil(out),
                          base64Of(operation(dataOf(in.at("data")), dataOf(in.at("key")),
                                             optionalData(in.at("iv")), nullptr)));
    };
  };
  orlftest::runJsonVectors("security_aes",
                           {{"encrypt", check(&ORLFCryptography::AES128EncryptData)},
                            {"decrypt", check(&ORLFCryptography::AES128DecryptData)}});
}

TEST(SecurityPrimitives, AgreeWithVectorsOfBase64) {
  orlftest::runJsonVectors(
      "security_base64",
      {{"encode",
        [](const Json& in, const Json& out) {
          return disagreement(out.get<std::string>(),
                              base64EncodedStringWithLineBreaks(dataOf(in.at("base64")),
                                                                in.at("lineBreaks").get<bool>()));
        }},
       {"decode",
        [](const Json& in, const Json& out) {
          const Json& text = in.is_object() ? in.at("text") : in;
          const Json& bytes = out.is_object() ? out.at("base64") : out;
          return disagreement(bytes.get<std::string>(),
                              base64Text(dataFromBase64String(text.get<std::string>()).text()));
        }},
       {"decodeToZero", [](const Json& in, const Json& out) {
          std::size_t length = 0;
          const std::unique_ptr<void, decltype(&std::free)> bytes(
              NewBase64Decode(in.at("text").get<std::string>().c_str(),
                              static_cast<std::size_t>(in.at("length").get<std::int64_t>()),
                              &length),
              &std::free);
          const NSData data(std::span(static_cast<const std::uint8_t*>(bytes.get()), length));
          return disagreement(out.at("base64").get<std::string>(), base64Text(data.text()));
        }}});
}

TEST(SecurityPrimitives, AgreeWithVectorsOfBlowfish) {
  using Operation = void (*)(NSMutableData&, std::string_view);
  const auto check = [](Operation operation) {
    return [operation](const Json& in, const Json& out) {
      NSMutableData data(dataOf(in.at("data")));
      operation(data, in.at("key").get<std::string>());
      return disagreement(out.get<std::string>(), base64Text(data.text()));
    };
  };
  orlftest::runJsonVectors("security_blowfish",
                           {{"encrypt", check(&encryptDataWithBlowfishKey)},
                            {"decrypt", check(&decyrptDataWithBlowfishKey)},
                            {"block", [](const Json& in, const Json& out) {
                               const NSData key = dataOf(in.at("key"));
                               BLOWFISH_CTX context;
                               Blowfish_Init(&context, key.bytes().data(),
                                             static_cast<std::int32_t>(key.length()));
                               std::uint32_t left = wordOf(in.at("left"));
                               std::uint32_t right = wordOf(in.at("right"));
                               Blowfish_Encrypt(&context, &left, &right);
                               if (left != wordOf(out.at("left")))
                                 return disagreement(wordOf(out.at("left")), left);
                               return disagreement(wordOf(out.at("right")), right);
                             }}});
}

TEST(SecurityPrimitives, AgreeWithVectorsOfDigests) {
  orlftest::runJsonVectors(
      "security_digest",
      {{"sha1OfText",
        [](const Json& in, const Json& out) {
          return disagreement(out.get<std::string>(),
                              hexText(orlfSHAHash(in.get<std::string>()).text()));
        }},
       {"sha1",
        [](const Json& in, const Json& out) {
          return disagreement(out.get<std::string>(), hexText(orlfSHAHash(patternOf(in)).text()));
        }},
       {"md5", [](const Json& in, const Json& out) {
          return disagreement(out.get<std::string>(), md5Of(patternOf(in)));
        }}});
}

TEST(SecurityPrimitives, AgreeWithVectorsOfGzip) {
  orlftest::runJsonVectors(
      "security_gzip",
      {{"level",
        [](const Json& in, const Json& out) {
          return disagreement(out.get<int>(),
                              internal::primitives::compressionLevel(in.get<float>()));
        }},
       {"gunzip", [](const Json& in, const Json& out) {
          const std::optional<NSData> data = gunzippedData(dataOf(in.at("data")));
          if (out.is_null() || !data) return disagreement(out.is_null(), !data.has_value());
          if (out.at("length") != data->length())
            return disagreement(out.at("length").get<NSUInteger>(), data->length());
          return disagreement(out.at("sha1").get<std::string>(),
                              hexText(orlfSHAHash(*data).text()));
        }}});
}

TEST(SecurityPrimitives, AgreeWithVectorsOfPasswordKeys) {
  orlftest::runJsonVectors("security_pbkdf2",
                           {{"keyWithLength", [](const Json& in, const Json& out) {
                               const Json& salt = in.at("salt");
                               const NSData key = ORLFCryptography::keyWithLength(
                                   in.at("length").get<NSUInteger>(),
                                   in.at("password").get<std::string>(), dataOf(salt),
                                   in.at("rounds").get<std::uint32_t>());
                               return disagreement(out.get<std::string>(), hexText(key.text()));
                             }}});
}

}  // namespace
}  // namespace ORLFoundation
