/// The text by which an application tells web servers what it is.
///
///     request->setValue(ORLFHTTPUserAgent::appUserAgent()->userAgentString(), "User-Agent");
///     // "App/1.2 x86_64 Mac/13.2 (KHTML, like Gecko) CFNetwork/1404 Darwin/22.3.0"
///
/// It is made of the main bundle, the bundle "com.apple.CFNetwork" (NSBundle.h), and the process's
/// facts (NSProcessFacts.h), or by the host's view of web pages (WKWebView.h). A field whose source
/// says nothing is nil, and reads "(null)" in the texts that are made of it.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/process/NSProcessFacts.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace ORLFoundation {

/// Any thread may ask and change it.
class ORLFHTTPUserAgent : public NSObject {
 public:
  using Text = std::optional<std::string>;

  /// `appUserAgent`  One for the process, made at the first call. Where the host has a view of web
  /// pages, that call is to come on the main thread.
  [[nodiscard]] static const std::shared_ptr<ORLFHTTPUserAgent>& appUserAgent();
  /// `init`  Reads all sources as they are now.
  ORLFHTTPUserAgent();

  /// `stringFromWebKit`  What the host's view calls itself, with the application's version before
  /// the first "Mobile" and, behind it all, "Safari/" and the version of "AppleWebKit/", where a
  /// blank follows that. nil without a view.
  [[nodiscard]] Text stringFromWebKit() const;
  void setStringFromWebKit(Text text);
  /// `darwinVersionNumber`  The kernel's release.
  [[nodiscard]] Text darwinVersionNumber() const;
  void setDarwinVersionNumber(Text text);
  /// `CFNetworkVersionNumber`
  [[nodiscard]] Text CFNetworkVersionNumber() const;
  void setCFNetworkVersionNumber(Text text);
  /// `systemName`  "Mac", on every system: servers know the text.
  [[nodiscard]] Text systemName() const;
  void setSystemName(Text text);
  /// `systemVersion`  "13", "13.2" or "13.0.1": a patch, or else a minor version, of 0 is left out.
  [[nodiscard]] Text systemVersion() const;
  void setSystemVersion(Text text);
  /// `deviceName`  The machine's kind, "x86_64".
  [[nodiscard]] Text deviceName() const;
  void setDeviceName(Text text);
  /// `appName`, `appVersion`
  [[nodiscard]] Text appName() const;
  void setAppName(Text text);
  [[nodiscard]] Text appVersion() const;
  void setAppVersion(Text text);
  /// `systemInfo`
  [[nodiscard]] NSSystemNames systemInfo() const;
  void setSystemInfo(NSSystemNames names);

  /// `darwinVersion`  "Darwin/22.3.0".
  [[nodiscard]] std::string darwinVersion() const;
  /// `CFNetworkVersion`  "CFNetwork/1404".
  [[nodiscard]] std::string CFNetworkVersion() const;
  /// `deviceVersion`  "Mac/13.2".
  [[nodiscard]] std::string deviceVersion() const;
  /// `appNameAndVersion`  "App/1.2".
  [[nodiscard]] std::string appNameAndVersion() const;
  /// `userAgentString`  `stringFromWebKit` where there is one, else the text made of all others.
  [[nodiscard]] std::string userAgentString() const;

  [[nodiscard]] std::string className() const override { return "ORLFHTTPUserAgent"; }
  /// `copy`  Made anew, then given every field of the receiver.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;

 private:
  struct Fields {
    Text stringFromWebKit, darwinVersionNumber, CFNetworkVersionNumber, systemName, systemVersion,
        deviceName, appName, appVersion;
    NSSystemNames systemInfo;
  };

  [[nodiscard]] Fields fields() const;
  [[nodiscard]] Text get(Text Fields::*field) const;
  void set(const char* key, Text Fields::*field, Text text);

  mutable std::mutex lock_;
  Fields fields_;
};

namespace internal::agent {

/// What a view's text becomes, and a version as `systemVersion` has it.
[[nodiscard]] std::string adjustedWebKitText(std::string text,
                                             const std::optional<std::string>& appVersion);
[[nodiscard]] std::string versionText(const NSOperatingSystemVersion& version);

}  // namespace internal::agent

}  // namespace ORLFoundation
