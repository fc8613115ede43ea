#include <ORLFoundation/security/store/ORLFEncryptedStore.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <gtest/gtest.h>
#include <tests/support/Files.h>
#include <tests/support/VectorFile.h>

#include <ORLFoundation/platform/base/Base64.h>

namespace ORLFoundation {
namespace {

using orlftest::disagreement;
using orlftest::Json;

/// A list in the form of the vectors: data as an object with its Base64 text.
Json jsonOf(const id& value) {
  if (const auto dictionary = value.as<NSDictionary>()) {
    Json members = Json::object();
    for (const auto& [key, member] : dictionary->entries())
      members[*key.as<std::string>()] = jsonOf(member);
    return members;
  }
  if (const auto array = value.as<NSArray>()) {
    Json members = Json::array();
    for (const id& member : *array) members.push_back(jsonOf(member));
    return members;
  }
  if (const auto data = value.as<NSData>())
    return {{"data", internal::base::base64Text(data->text())}};
  if (const auto number = value.as<NSInteger>()) return *number;
  return value.as<std::string>().value();
}

std::string checkRow(const Json& row) {
  const std::string file =
      orlftest::vectorFile("files/security/" + row.at("file").get<std::string>());
  std::shared_ptr<const NSError> error;
  const id list = ORLFEncryptedStore::readEncryptedPropertyListForFileAtURL(
      NSURL::fileURLWithPath(file), row.at("in").at("password").get<std::string>(), &error);
  const Json& out = row.at("out");
  if (out == "error") return disagreement("nil, error", list.isNil() && error ? "nil, error" : "");
  if (error || list.isNil()) return "expected a list, got " + list.description();
  if (out.is_object()) return disagreement(out.at("content").dump(), jsonOf(list).dump());
  const id outer =
      NSPropertyListSerialization::propertyListWithData(NSData(orlftest::contentOf(file)), 0);
  return disagreement(jsonOf(outer).dump(), jsonOf(list).dump());
}

TEST(ORLFEncryptedStore, AgreesWithVectors) { orlftest::runJsonRows("security_store", &checkRow); }

}  // namespace
}  // namespace ORLFoundation
