#include <ORLFoundation/platform/compression/LZFSE.h>

#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/base/Digest_testing.h>
#include <ORLFoundation/platform/compression/LZFSE_testing.h>
#include <gtest/gtest.h>
#include <tests/support/Files.h>
#include <tests/support/VectorFile.h>

namespace ORLFoundation::internal::compression {
namespace {

using orlftest::Bytes;
using orlftest::disagreement;
using orlftest::Json;
using orlftest::sha256Of;

TEST(LZFSE, AgreesWithVectorsBothWays) {
  orlftest::runJsonRows("security_lzfse", [](const Json& row) {
    const Bytes stream = orlftest::bytesOf(orlftest::contentOf(
        orlftest::vectorFile("files/security/" + row.at("file").get<std::string>())));
    const auto bytes = orlftest::unpacked(stream);
    if (row.at("op") != "decode" || !bytes) return std::string("it does not decode");
    const Json& out = row.at("out");
    if (row.at("in").at("length") != bytes->size())
      return disagreement(row.at("in").at("length").get<std::size_t>(), bytes->size());
    if (!out.at("data").is_null() &&
        base::base64Text(orlftest::textOf(*bytes)) != out.at("data").get<std::string>())
      return std::string("other bytes");
    if (out.at("sha256") != sha256Of(*bytes))
      return disagreement(out.at("sha256").get<std::string>(), sha256Of(*bytes));
    const Bytes ours = orlftest::packed(*bytes);
    if (orlftest::unpacked(ours) != bytes) return std::string("ours does not come back");
    if (ours.size() * 10 > stream.size() * 11)
      return "packed into " + std::to_string(ours.size()) + " bytes, the sample has " +
             std::to_string(stream.size());
    return std::string();
  });
}

}  // namespace
}  // namespace ORLFoundation::internal::compression
