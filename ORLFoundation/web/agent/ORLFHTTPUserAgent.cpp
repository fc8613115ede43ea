
#include <ORLFoundation/web/agent/ORLFHTTPUserAgent.h>

#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/object/NSString.h>
#include <ORLFoundation/platform/process/NSBundle.h>
#include <ORLFoundation/platform/process/NSProcessInfo.h>
#include <ORLFoundation/web/agent/WKWebView.h>

#include <utility>

namespace ORLFoundation {
namespace internal::agent {

std::string adjustedWebKitText(std::string text, const std::optional<std::string>& appVersion) {
  constexpr std::string_view kMobile = "Mobile", kEngine = "AppleWebKit/";
  if (const std::size_t mobile = text.find(kMobile); mobile != std::string::npos)
    text.insert(mobile, stringWithFormat("Version/%@ ", appVersion));
  const std::size_t engine = text.find(kEngine);
  if (engine == std::string::npos) return text;
  const std::size_t begin = engine + kEngine.size();
  const std::size_t end = text.find(' ', begin);
  if (end == std::string::npos) return text;
  return text + " Safari/" + text.substr(begin, end - begin);
}

std::string versionText(const NSOperatingSystemVersion& version) {
  std::string text = std::to_string(version.majorVersion);
  if (version.minorVersion != 0 || version.patchVersion != 0)
    text += "." + std::to_string(version.minorVersion);
  if (version.patchVersion != 0) text += "." + std::to_string(version.patchVersion);
  return text;
}

}  // namespace internal::agent

namespace {

using Text = ORLFHTTPUserAgent::Text;
using namespace internal::agent;

constexpr std::string_view kShortVersion = "CFBundleShortVersionString";

Text textOfWebView() {
  const auto view = WKMakeWebView();
  if (!view) return std::nullopt;
  view->loadHTMLString("Goodluck", std::nullopt);
  return view->valueForKey("userAgent").as<std::string>();
}

Text textOfBundle(const std::shared_ptr<NSBundle>& bundle, std::string_view key) {
  return bundle ? bundle->objectForInfoDictionaryKey(key).as<std::string>() : std::nullopt;
}

}  // namespace

const std::shared_ptr<ORLFHTTPUserAgent>& ORLFHTTPUserAgent::appUserAgent() {
  static const auto& agent = *new auto(std::make_shared<ORLFHTTPUserAgent>());
  return agent;
}

ORLFHTTPUserAgent::ORLFHTTPUserAgent() {
  fields_.stringFromWebKit = textOfWebView();
  fields_.systemInfo = NSCurrentProcessFacts()->systemNames;
  fields_.darwinVersionNumber = fields_.systemInfo.release;
  fields_.CFNetworkVersionNumber =
      textOfBundle(NSBundle::bundleWithIdentifier("com.apple.CFNetwork"), kShortVersion);
  fields_.systemName = "Mac";
  fields_.systemVersion = versionText(NSProcessInfo::processInfo()->operatingSystemVersion());
  fields_.deviceName = fields_.systemInfo.machine;
  fields_.appName = textOfBundle(NSBundle::mainBundle(), kCFBundleNameKey);
  fields_.appVersion = textOfBundle(NSBundle::mainBundle(), kShortVersion);
  if (fields_.stringFromWebKit)
    fields_.stringFromWebKit =
        adjustedWebKitText(*std::move(fields_.stringFromWebKit), fields_.appVersion);
}

std::string ORLFHTTPUserAgent::darwinVersion() const {
  return stringWithFormat("Darwin/%@", darwinVersionNumber());
}

std::string ORLFHTTPUserAgent::CFNetworkVersion() const {
  return stringWithFormat("CFNetwork/%@", CFNetworkVersionNumber());
}

std::string ORLFHTTPUserAgent::deviceVersion() const {
  return stringWithFormat("%@/%@", systemName(), systemVersion());
}

std::string ORLFHTTPUserAgent::appNameAndVersion() const {
  return stringWithFormat("%@/%@", appName(), appVersion());
}

std::string ORLFHTTPUserAgent::userAgentString() const {
  if (auto text = stringFromWebKit()) return *std::move(text);
  return stringWithFormat("%@ %@ %@ (KHTML, like Gecko) %@ %@", appNameAndVersion(), deviceName(),
                          deviceVersion(), CFNetworkVersion(), darwinVersion());
}

std::shared_ptr<NSObject> ORLFHTTPUserAgent::newObjectOfReceiversClass() const {
  return std::make_shared<ORLFHTTPUserAgent>();
}

std::shared_ptr<NSObject> ORLFHTTPUserAgent::copy() {
  auto other = newObjectAs<ORLFHTTPUserAgent>();
  other->fields_ = fields();
  return other;
}

ORLFHTTPUserAgent::Fields ORLFHTTPUserAgent::fields() const {
  const std::lock_guard guard(lock_);
  return fields_;
}

Text ORLFHTTPUserAgent::get(Text Fields::*field) const {
  const std::lock_guard guard(lock_);
  return fields_.*field;
}

void ORLFHTTPUserAgent::set(const char* key, Text Fields::*field, Text text) {
  changeValue(key, [&] {
    const std::lock_guard guard(lock_);
    fields_.*field = std::move(text);
  });
}

NSSystemNames ORLFHTTPUserAgent::systemInfo() const { return fields().systemInfo; }

void ORLFHTTPUserAgent::setSystemInfo(NSSystemNames names) {
  const std::lock_guard guard(lock_);
  fields_.systemInfo = std::move(names);
}

Text ORLFHTTPUserAgent::stringFromWebKit() const { return get(&Fields::stringFromWebKit); }
void ORLFHTTPUserAgent::setStringFromWebKit(Text text) {
  set("stringFromWebKit", &Fields::stringFromWebKit, std::move(text));
}

Text ORLFHTTPUserAgent::darwinVersionNumber() const { return get(&Fields::darwinVersionNumber); }
void ORLFHTTPUserAgent::setDarwinVersionNumber(Text text) {
  set("darwinVersionNumber", &Fields::darwinVersionNumber, std::move(text));
}

Text ORLFHTTPUserAgent::CFNetworkVersionNumber() const {
  return get(&Fields::CFNetworkVersionNumber);
}
void ORLFHTTPUserAgent::setCFNetworkVersionNumber(Text text) {
  set("CFNetworkVersionNumber", &Fields::CFNetworkVersionNumber, std::move(text));
}

Text ORLFHTTPUserAgent::systemName() const { return get(&Fields::systemName); }
void ORLFHTTPUserAgent::setSystemName(Text text) {
  set("systemName", &Fields::systemName, std::move(text));
}

Text ORLFHTTPUserAgent::systemVersion() const { return get(&Fields::systemVersion); }
void ORLFHTTPUserAgent::setSystemVersion(Text text) {
  set("systemVersion", &Fields::systemVersion, std::move(text));
}

Text ORLFHTTPUserAgent::deviceName() const { return get(&Fields::deviceName); }
void ORLFHTTPUserAgent::setDeviceName(Text text) {
  set("deviceName", &Fields::deviceName, std::move(text));
}

Text ORLFHTTPUserAgent::appName() const { return get(&Fields::appName); }
void ORLFHTTPUserAgent::setAppName(Text text) { set("appName", &Fields::appName, std::move(text)); }

Text ORLFHTTPUserAgent::appVersion() const { return get(&Fields::appVersion); }
void ORLFHTTPUserAgent::setAppVersion(Text text) {
  set("appVersion", &Fields::appVersion, std::move(text));
}

const NSKeyTable& ORLFHTTPUserAgent::keyTable() const {
  using Agent = ORLFHTTPUserAgent;
  static const NSKeyTable table(
      NSObject::keyTable(),
      {
          NSKey::readWrite<&Agent::stringFromWebKit, &Agent::setStringFromWebKit>(
              "stringFromWebKit"),
          NSKey::readWrite<&Agent::darwinVersionNumber, &Agent::setDarwinVersionNumber>(
              "darwinVersionNumber"),
          NSKey::readWrite<&Agent::CFNetworkVersionNumber, &Agent::setCFNetworkVersionNumber>(
              "CFNetworkVersionNumber"),
          NSKey::readWrite<&Agent::systemName, &Agent::setSystemName>("systemName"),
          NSKey::readWrite<&Agent::systemVersion, &Agent::setSystemVersion>("systemVersion"),
          NSKey::readWrite<&Agent::deviceName, &Agent::setDeviceName>("deviceName"),
          NSKey::readWrite<&Agent::appName, &Agent::setAppName>("appName"),
          NSKey::readWrite<&Agent::appVersion, &Agent::setAppVersion>("appVersion"),
      });
  return table;
}

}  // namespace ORLFoundation
