#include "web/web_address.h"

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/text/NSStringPercentEncoding.h>

#include <algorithm>
#include <array>
#include <optional>

#include "cli/failure.h"
#include "cli/message_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::array kSchemes = {"http", "https", "file", "data"};

std::string lowerScheme(const NSURL& url) {
  return internal::base::lowerASCII(url.scheme().value_or(""));
}

}  // namespace

NSURL readAddressArgument(const std::string& text) {
  const auto url = NSURL::URLWithString(text);
  const std::string scheme = url ? lowerScheme(*url) : "";
  const bool isKnown = std::find(kSchemes.begin(), kSchemes.end(), scheme) != kSchemes.end();
  if (isKnown && (!isWebAddress(*url) || !url->host().value_or("").empty())) return *url;
  throw UsageFailure(
      "URL: expected an address such as https://example.com/rates.csv, or of file: or data:");
}

std::string passwordOf(const NSURL& url) {
  const std::string& text = url.absoluteString();
  const std::size_t slashes = text.find("//");
  if (slashes == std::string::npos) return "";
  const std::size_t begin = slashes + 2;
  const std::string authority = text.substr(begin, text.find_first_of("/?#", begin) - begin);
  const std::size_t end = authority.rfind('@');
  const std::size_t colon = authority.find(':');
  if (end == std::string::npos || colon >= end) return "";
  const std::string password = authority.substr(colon + 1, end - colon - 1);
  return stringByRemovingPercentEncoding(password).value_or(password);
}

bool isWebAddress(const NSURL& url) { return lowerScheme(url).starts_with("http"); }

bool isDataAddress(const NSURL& url) { return lowerScheme(url) == "data"; }

std::string shownAddress(const NSURL& url) {
  const std::string scheme = lowerScheme(url);
  if (isDataAddress(url)) return "data:...";
  std::string host = url.host().value_or("");
  if (host.find(':') != std::string::npos) host = "[" + host + "]";
  std::string text = scheme + "://" + host;
  if (const auto port = url.port()) text += ":" + std::to_string(*port);
  return oneLine(text + std::string(url.percentEncodedPath()));
}

std::string statusText(NSInteger status) {
  return "the server answered " + std::to_string(status) + " (" +
         NSHTTPURLResponse::localizedStringForStatusCode(status) + ")";
}

std::string failureText(const NSError& error) {
  if (const auto status = error.userInfo()->objectForKey("statusCode").as<NSInteger>())
    return statusText(*status);
  return oneLine(error.localizedDescription());
}

}  // namespace orlftool
