
#include <ORLFoundation/web/responses/ORLFServiceResponseEnumeration.h>
#include <ORLFoundation/web/responses/ORLFServiceResponseError.h>
#include <ORLFoundation/web/responses/ORLFServiceResponseObject.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <algorithm>

namespace ORLFoundation {
namespace {

using orlftest::disagreement;
using orlftest::Json;

id valueOf(const Json& json) {
  if (json.is_null()) return NSNull();
  if (json.is_boolean()) return json.get<bool>();
  if (json.is_number_unsigned()) return json.get<std::uint64_t>();
  if (json.is_number_integer()) return json.get<std::int64_t>();
  if (json.is_number()) return json.get<double>();
  if (json.is_string()) return json.get<std::string>();
  if (json.is_array()) {
    std::vector<id> members;
    for (const Json& member : json) members.push_back(valueOf(member));
    return std::make_shared<NSArray>(std::move(members));
  }
  NSDictionary::Entries entries;
  for (const auto& [key, member] : json.items()) entries.emplace_back(key, valueOf(member));
  return std::make_shared<NSDictionary>(entries);
}

/// A class as the row has it.
class RowResponse : public ORLFServiceResponseObject {
 public:
  using ORLFServiceResponseObject::ORLFServiceResponseObject;
  static inline Json row;
  [[nodiscard]] std::shared_ptr<NSSet> requiredDataKeyPaths() const override {
    std::vector<id> paths;
    for (const Json& path : row.at("requiredDataKeyPaths"))
      paths.emplace_back(path.get<std::string>());
    return std::make_shared<NSSet>(paths);
  }
  [[nodiscard]] std::string className() const override {
    return row.at("class").get<std::string>();
  }
};

std::string checkObject(const Json& in, const Json& out) {
  RowResponse::row = in;
  std::shared_ptr<const NSError> error;
  const auto response = ORLFServiceResponseObject::initWithData<RowResponse>(
      valueOf(in.at("data")).as<NSDictionary>(), &error);
  Json got{{"ok", response != nullptr}};
  if (error) {
    const auto& information = *error->userInfo();
    got["code"] = error->code();
    got["domain"] = error->domain();
    got["description"] = error->localizedDescription();
    std::vector<std::string> missing;
    for (const id& path :
         *information.objectForKey(ORLFServiceResponseErrorUserInfoMissingFieldsKey).as<NSArray>())
      missing.push_back(path.description());
    std::ranges::sort(missing);
    got["missing"] = missing;
    const Json& accepted = out.at("suggestions");
    const std::string suggestion =
        information.objectForKey(NSLocalizedRecoverySuggestionErrorKey).description();
    const bool isAccepted =
        accepted.is_null() || std::ranges::find(accepted, Json(suggestion)) != accepted.end();
    got["suggestions"] = isAccepted ? accepted : Json(suggestion);
  }
  return disagreement(out, got);
}

std::optional<NSNumber> numberOf(const Json& json) {
  return json.is_null() ? std::nullopt : valueOf(json).as<NSNumber>();
}

Json jsonOf(const std::optional<NSNumber>& number) {
  if (!number) return nullptr;
  switch (number->kind()) {
    case NSNumber::Kind::Boolean:
      return number->boolValue();
    case NSNumber::Kind::Double:
      return number->doubleValue();
    case NSNumber::Kind::UnsignedInteger:
      return number->unsignedIntegerValue();
    default:
      return number->integerValue();
  }
}

std::string checkEnumeration(const Json& in, const Json& out) {
  const ORLFServiceResponseEnumeration enumeration(
      valueOf(in.at("map")).as<NSDictionary>(), in.at("caseSensitive").get<bool>(),
      numberOf(in.at("unknown")), numberOf(in.at("nilValue")));
  Json got{{"values", Json::array()},
           {"valid", Json::array()},
           {"strings", Json::array()},
           {"valuesForStrings", Json::array()}};
  std::vector<std::string> strings;
  for (const Json& probe : in.at("probes")) {
    std::optional<std::string> text;
    if (!probe.is_null()) strings.push_back(text.emplace(probe.get<std::string>()));
    got["values"].push_back(jsonOf(enumeration.enumerationValueForString(text)));
    got["valid"].push_back(enumeration.validEnumerationString(text));
  }
  for (const NSNumber& value : enumeration.enumerationValuesForStrings(strings))
    got["valuesForStrings"].push_back(jsonOf(value));
  got["invalidStrings"] = enumeration.invalidEnumerationStringsForStrings(strings);
  for (const Json& number : in.at("numbers")) {
    got["strings"].push_back(
        orlftest::jsonOrNull(enumeration.stringForEnumerationValue(numberOf(number))));
  }
  return disagreement(out, got);
}

TEST(ORLFServiceResponse, AgreesWithVectors) {
  orlftest::runJsonVectors("web_response",
                           {{"initWithData", checkObject}, {"enumeration", checkEnumeration}});
}

}  // namespace
}  // namespace ORLFoundation
