
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/web/agent/ORLFDictionaryQueryString.h>
#include <ORLFoundation/web/agent/ORLFHTTPUserAgent.h>
#include <ORLFoundation/web/agent/ORLFReachability.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <algorithm>

namespace ORLFoundation {
namespace {

using orlftest::disagreement;
using orlftest::Json;
using orlftest::textOrNil;

std::string checkAgent(const Json& in, const Json& out) {
  ORLFHTTPUserAgent agent;
  // What a row does not name it leaves nil, but for the literal.
  for (const char* key : {"stringFromWebKit", "darwinVersionNumber", "CFNetworkVersionNumber",
                          "systemVersion", "deviceName", "appName", "appVersion"})
    agent.setValueForKey(id(), key);
  for (const auto& [key, value] : in.items()) agent.setValueForKey(textOrNil(value), key);
  return disagreement(out.get<std::string>(), agent.userAgentString());
}

std::string checkWebKit(const Json& in, const Json& out) {
  const auto text = textOrNil(in.at("userAgent"));
  const auto version = textOrNil(in.value("appVersion", Json()));
  return disagreement(
      textOrNil(out),
      text ? std::optional(internal::agent::adjustedWebKitText(*text, version)) : std::nullopt);
}

std::string checkVersion(const Json& in, const Json& out) {
  return disagreement(
      out.get<std::string>(),
      internal::agent::versionText(
          {in.at(0).get<NSInteger>(), in.at(1).get<NSInteger>(), in.at(2).get<NSInteger>()}));
}

std::string checkStatus(const Json& in, const Json& out) {
  const auto reachability = ORLFReachability::reachabilityForInternetConnection();
  return disagreement(out.get<std::int64_t>(),
                      std::int64_t{reachability->networkStatusForFlags(in.get<std::uint32_t>())});
}

TEST(ORLFWebAgent, AgreesWithVectors) {
  orlftest::runJsonVectors("web_agent", {{"stringFromWebKit", checkWebKit},
                                         {"systemVersion", checkVersion},
                                         {"userAgentString", checkAgent},
                                         {"networkStatusForFlags", checkStatus}});
}

id valueOf(const Json& json) {
  if (json.is_null()) return NSNull();
  if (json.is_boolean()) return json.get<bool>();
  if (json.is_number_unsigned()) return json.get<std::uint64_t>();
  if (json.is_number_integer()) return json.get<std::int64_t>();
  if (json.is_number()) return json.get<double>();
  if (json.is_string()) return json.get<std::string>();
  if (json.is_object() && json.contains("data")) return NSData(json.at("data").get<std::string>());
  if (json.is_object()) return std::make_shared<NSDictionary>();
  std::vector<id> members;
  for (const Json& member : json) members.push_back(valueOf(member));
  return std::make_shared<NSArray>(std::move(members));
}

std::string checkRead(const Json& in, const Json& out) {
  Json got = Json::object();
  for (const auto& [key, value] :
       orlfDictionaryWithURLQueryString(textOrNil(in).value_or(""))->entries()) {
    Json& place = got[key.description()];
    const auto set = value.as<NSSet>();
    if (!set) place = value.description();
    if (!set) continue;
    std::vector<std::string> members;
    for (const id& member : set->allObjects()) members.push_back(member.description());
    std::ranges::sort(members);
    place = members;
  }
  return disagreement(out, got);
}

std::string checkWritten(const Json& in, const Json& out) {
  NSDictionary::Entries entries;
  for (const auto& [key, value] : in.at("dictionary").items())
    entries.emplace_back(key, valueOf(value));
  const NSDictionary dictionary(entries);
  const Json options = in.value("options", Json());
  return disagreement(out.get<std::string>(),
                      options.is_null()
                          ? orlfURLQueryString(dictionary)
                          : orlfURLQueryStringWithOptions(dictionary, options.get<NSUInteger>()));
}

TEST(ORLFDictionaryQueryString, AgreesWithVectors) {
  orlftest::runJsonVectors("web_query", {{"orlfDictionaryWithURLQueryString", checkRead},
                                         {"orlfURLQueryString", checkWritten}});
}

}  // namespace
}  // namespace ORLFoundation
