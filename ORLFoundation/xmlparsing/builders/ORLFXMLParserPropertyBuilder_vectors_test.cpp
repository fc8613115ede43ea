#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserPropertyBuilder.h>

#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/xmlparsing/builders/ORLFXMLParserVocabulary_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <memory>
#include <string>

namespace ORLFoundation {
namespace {

using orlftest::Json;

Json jsonOf(const id& value) {
  if (value.isNil()) return nullptr;
  if (value.isNull()) return "NSNull";
  if (const auto* text = value.get<std::string>()) return *text;
  if (const auto* number = value.get<NSNumber>()) {
    if (number->kind() == NSNumber::Kind::Boolean) return number->boolValue();
    return number->integerValue();
  }
  if (const auto array = value.as<NSArray>()) {
    Json members = Json::array();
    for (const id& member : array->members()) members.push_back(jsonOf(member));
    return members;
  }
  if (const auto set = value.as<NSSet>()) {
    Json members = Json::array();
    for (const id& member : set->allObjects()) members.push_back(jsonOf(member));
    return {{"set", members}};
  }
  if (const auto dictionary = value.as<NSDictionary>()) {
    Json entries = Json::object();
    for (const auto& [key, entry] : dictionary->entries())
      entries[key.description()] = jsonOf(entry);
    return entries;
  }
  return value.description();
}

std::string properties(const Json& in, const Json& out) {
  const LogCapture log;
  const auto parser = std::make_shared<orlftest::VocabularyParser>();
  parser->setUnhandledElementBehavior(in.at("unhandledElementBehavior").get<std::int32_t>());
  std::shared_ptr<const NSError> error;
  const bool isParsed =
      parser->parseData(NSData(std::string_view(in.at("xml").get<std::string>())), &error);
  Json code;
  if (error) code = error->code();
  Json object;
  if (isParsed && parser->top) object = jsonOf(parser->top->builtObject());
  const Json got = {{"ok", isParsed}, {"error", code}, {"object", object}};
  return orlftest::disagreement(out.dump(), got.dump());
}

TEST(ORLFXMLParserPropertyBuilder, AgreesWithVectors) {
  orlftest::runJsonVectors("xmlparsing_properties", {{"properties", properties}});
}

}  // namespace
}  // namespace ORLFoundation
