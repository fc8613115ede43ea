/// Values of session vectors as the library's, and back.
#pragma once

#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/object/NSError_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <tests/support/VectorFile.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace orlftest {

inline ORLFoundation::NSData dataOfVector(const Json& content) {
  if (content.is_string()) return ORLFoundation::NSData(content.get<std::string>());
  return ORLFoundation::NSData(
      *ORLFoundation::internal::base::bytesOfBase64Text(content.at("base64").get<std::string>()));
}
inline Json vectorOfBytes(std::string_view bytes) {
  if (ORLFoundation::internal::base::isUTF8(bytes)) return std::string(bytes);
  return {{"base64", ORLFoundation::internal::base::base64Text(bytes)}};
}
inline Json vectorOfError(const std::shared_ptr<const ORLFoundation::NSError>& error) {
  if (!error) return nullptr;
  Json told = jsonFromError(error);
  const auto status = error->userInfo()->objectForKey("statusCode").as<ORLFoundation::NSInteger>();
  const auto text = error->userInfo()->objectForKey("statusDescription").as<std::string>();
  if (status) told["userInfo"]["statusCode"] = *status;
  if (status && text != ORLFoundation::NSHTTPURLResponse::localizedStringForStatusCode(*status))
    told["userInfo"]["statusDescription"] = "another text";
  if (!status && text) told["userInfo"]["statusDescription"] = *text;
  return told;
}
inline std::shared_ptr<ORLFoundation::NSURLResponse> responseOfVector(
    const Json& response, const ORLFoundation::NSURL& url) {
  if (response.at("status").is_null()) return std::make_shared<ORLFoundation::NSURLResponse>(url);
  ORLFoundation::NSHTTPHeaderFields fields;
  const Json headers = response.value("headers", Json::object());
  for (const auto& [name, value] : headers.items()) fields[name] = value.get<std::string>();
  return std::make_shared<ORLFoundation::NSHTTPURLResponse>(
      url, response.at("status").get<ORLFoundation::NSInteger>(), "HTTP/1.1", std::move(fields));
}

/// Sets the modification date of a file, to the millisecond.
inline void setFileDate(const std::string& path, const std::string& date) {
  constexpr double kMilliseconds = 1000;
  const auto time = std::chrono::milliseconds(
      std::llround(dateFromVector(date)->timeIntervalSince1970() * kMilliseconds));
  std::filesystem::last_write_time(
      path,
      std::chrono::file_clock::from_sys(std::chrono::sys_time<std::chrono::milliseconds>(time)));
}

/// What was told, where a vector leaves the code of an error, or all of it, open, and does not say
/// it.
inline Json withoutWhatIsOpen(const Json& expected, Json told) {
  if (expected.is_object() && told.is_object()) {
    const bool isAnyError = expected.empty() && told.contains("domain");
    const bool isAnyCode = expected.contains("domain") && !expected.contains("code");
    if (isAnyError) return Json::object();
    if (isAnyCode) told.erase("code");
    for (auto& [key, value] : told.items())
      if (expected.contains(key)) value = withoutWhatIsOpen(expected.at(key), value);
  } else if (expected.is_array() && told.is_array()) {
    for (std::size_t i = 0; i < std::min(expected.size(), told.size()); ++i)
      told[i] = withoutWhatIsOpen(expected[i], told[i]);
  }
  return told;
}

}  // namespace orlftest
