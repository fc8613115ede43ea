
#include <ORLFoundation/web/agent/ORLFHTTPUserAgent.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/process/NSBundle.h>
#include <ORLFoundation/web/agent/WKWebView.h>
#include <gtest/gtest.h>

#include <thread>

namespace ORLFoundation {
namespace {

constexpr std::string_view kShortVersion = "CFBundleShortVersionString";

/// The application, its network library and its machine as a test has them.
class UserAgent : public testing::Test {
 protected:
  UserAgent() {
    NSBundle::mainBundle()->setInfoDictionary(
        *NSDictionary::dictionaryWithEntries({{kCFBundleNameKey, "App"}, {kShortVersion, "1.2"}}));
    network()->setInfoDictionary(*NSDictionary::dictionaryWithEntries(
        {{kCFBundleIdentifierKey, "com.apple.CFNetwork"}, {kShortVersion, "1404"}}));
  }
  ~UserAgent() override {
    NSBundle::mainBundle()->setInfoDictionary(NSDictionary());
    network()->setInfoDictionary(NSDictionary());
  }
  static const std::shared_ptr<NSBundle>& network() {
    static const auto bundle = [] {
      auto added = std::make_shared<NSBundle>();
      NSBundle::addBundle(added);
      return added;
    }();
    return bundle;
  }

  const Replaced<std::shared_ptr<const NSProcessFacts>> facts_{
      NSSetProcessFacts, std::make_shared<const NSProcessFacts>(NSProcessFacts{
                             {13, 2, 0}, {"Darwin", "host", "22.3.0", "Kernel 22", "x86_64"}})};
};

/// A view that calls itself something.
class View final : public WKWebView {
 public:
  explicit View(id name, std::string* loaded = nullptr) : name_(std::move(name)), loaded_(loaded) {}
  void loadHTMLString(std::string_view string, const std::optional<NSURL>& baseURL) override {
    if (loaded_ && !baseURL) *loaded_ = string;
  }
  [[nodiscard]] id valueForUndefinedKey(std::string_view key) const override {
    return key == "userAgent" ? name_ : WKWebView::valueForUndefinedKey(key);
  }

 private:
  const id name_;
  std::string* const loaded_;
};

Replaced<WKWebViewMaker> viewNamed(const id& name) {
  return {WKSetWebViewMaker, [name] { return std::make_shared<View>(name); }};
}

TEST_F(UserAgent, IsMadeOfBundlesAndFacts) {
  EXPECT_EQ(ORLFHTTPUserAgent().userAgentString(),
            "App/1.2 x86_64 Mac/13.2 (KHTML, like Gecko) CFNetwork/1404 Darwin/22.3.0");
}

TEST_F(UserAgent, FillsItsFields) {
  const ORLFHTTPUserAgent agent;
  EXPECT_EQ(agent.stringFromWebKit(), std::nullopt);
  EXPECT_EQ(agent.darwinVersionNumber(), "22.3.0");
  EXPECT_EQ(agent.CFNetworkVersionNumber(), "1404");
  EXPECT_EQ(agent.systemName(), "Mac");
  EXPECT_EQ(agent.systemVersion(), "13.2");
  EXPECT_EQ(agent.deviceName(), "x86_64");
  EXPECT_EQ(agent.appName(), "App");
  EXPECT_EQ(agent.appVersion(), "1.2");
  EXPECT_EQ(agent.systemInfo(), (NSSystemNames{"Darwin", "host", "22.3.0", "Kernel 22", "x86_64"}));
  EXPECT_EQ(agent.darwinVersion(), "Darwin/22.3.0");
  EXPECT_EQ(agent.CFNetworkVersion(), "CFNetwork/1404");
  EXPECT_EQ(agent.deviceVersion(), "Mac/13.2");
  EXPECT_EQ(agent.appNameAndVersion(), "App/1.2");
}

TEST_F(UserAgent, WritesNilWhereItsSourcesSayNothing) {
  NSBundle::mainBundle()->setInfoDictionary(NSDictionary());
  network()->setInfoDictionary(NSDictionary());
  const ORLFHTTPUserAgent agent;
  EXPECT_EQ(agent.appName(), std::nullopt);
  EXPECT_EQ(agent.CFNetworkVersionNumber(), std::nullopt);
  EXPECT_EQ(agent.userAgentString(),
            "(null)/(null) x86_64 Mac/13.2 (KHTML, like Gecko) CFNetwork/(null) Darwin/22.3.0");
}

TEST_F(UserAgent, TakesWhatTheViewCallsItself) {
  std::string loaded;
  const Replaced<WKWebViewMaker> maker(WKSetWebViewMaker, [&] {
    return std::make_shared<View>("Mobile AppleWebKit/605 x", &loaded);
  });
  const ORLFHTTPUserAgent agent;
  EXPECT_EQ(loaded, "Goodluck");
  EXPECT_EQ(agent.stringFromWebKit(), "Version/1.2 Mobile AppleWebKit/605 x Safari/605");
  EXPECT_EQ(agent.userAgentString(), agent.stringFromWebKit());
}

TEST_F(UserAgent, HasNoTextOfAViewThatHasNone) {
  for (const id& name : {id(), id(12), id(NSNull())}) {
    const auto view = viewNamed(name);
    EXPECT_EQ(ORLFHTTPUserAgent().stringFromWebKit(), std::nullopt);
  }
  const Replaced<WKWebViewMaker> none(WKSetWebViewMaker, [] { return nullptr; });
  EXPECT_EQ(ORLFHTTPUserAgent().stringFromWebKit(), std::nullopt);
}

struct ViewCase {
  const char *name, *before, *after;
};
const ViewCase kViews[] = {
    {"Empty", "", ""},
    {"NoEngine", "Something/1 y", "Something/1 y"},
    {"NoBlankBehindTheEngine", "AppleWebKit/605", "AppleWebKit/605"},
    {"Engine", "a AppleWebKit/605.1 (KHTML)", "a AppleWebKit/605.1 (KHTML) Safari/605.1"},
    {"EmptyVersion", "AppleWebKit/ x", "AppleWebKit/ x Safari/"},
    {"FirstOfTwo", "AppleWebKit/1 AppleWebKit/2 ", "AppleWebKit/1 AppleWebKit/2  Safari/1"},
    {"Mobile", "Mobile", "Version/1.2 Mobile"},
    {"FirstMobile", "Mobile Mobile", "Version/1.2 Mobile Mobile"},
    {"MobileBehindTheEngine", "AppleWebKit/605 Mobile/15",
     "AppleWebKit/605 Version/1.2 Mobile/15 Safari/605"},
    {"MobileWithinTheEngine", "AppleWebKit/Mobile x",
     "AppleWebKit/Version/1.2 Mobile x Safari/Version/1.2"},
};

TEST_F(UserAgent, AdjustsWhatTheViewCallsItself) {
  for (const ViewCase& row : kViews) {
    const auto view = viewNamed(row.before);
    EXPECT_EQ(ORLFHTTPUserAgent().stringFromWebKit(), row.after) << row.name;
  }
}

TEST_F(UserAgent, WritesVersionsAsShortAsTheyGo) {
  struct VersionTextCase {
    NSOperatingSystemVersion version;
    const char* text;
  };
  const VersionTextCase cases[] = {{{13, 0, 0}, "13"},     {{13, 2, 0}, "13.2"},
                                   {{13, 0, 1}, "13.0.1"}, {{13, 2, 1}, "13.2.1"},
                                   {{0, 0, 0}, "0"},       {{-1, -2, -3}, "-1.-2.-3"}};
  for (const VersionTextCase& row : cases)
    EXPECT_EQ(internal::agent::versionText(row.version), row.text);
}

TEST_F(UserAgent, CopiesEveryField) {
  const auto agent = std::make_shared<ORLFHTTPUserAgent>();
  agent->setStringFromWebKit("w");
  agent->setDarwinVersionNumber("d");
  agent->setCFNetworkVersionNumber("c");
  agent->setSystemName("n");
  agent->setSystemVersion("v");
  agent->setDeviceName("m");
  agent->setAppName("a");
  agent->setAppVersion(std::nullopt);
  agent->setSystemInfo({"1", "2", "3", "4", "5"});
  const auto copy = copyOf(agent);
  EXPECT_NE(copy, agent);
  agent->setAppName("other");
  EXPECT_EQ(copy->userAgentString(), "w");
  copy->setStringFromWebKit(std::nullopt);
  EXPECT_EQ(copy->userAgentString(), "a/(null) m n/v (KHTML, like Gecko) CFNetwork/c Darwin/d");
  EXPECT_EQ(copy->systemInfo(), (NSSystemNames{"1", "2", "3", "4", "5"}));
}

TEST_F(UserAgent, HasKeys) {
  ORLFHTTPUserAgent agent;
  for (const std::string key :
       {"stringFromWebKit", "darwinVersionNumber", "CFNetworkVersionNumber", "systemName",
        "systemVersion", "deviceName", "appName", "appVersion"}) {
    agent.setValueForKey("new " + key, key);
    EXPECT_EQ(agent.valueForKey(key), id("new " + key));
  }
}

TEST_F(UserAgent, IsOneForTheProcess) {
  std::shared_ptr<ORLFHTTPUserAgent> other;
  std::thread([&] { other = ORLFHTTPUserAgent::appUserAgent(); }).join();
  EXPECT_EQ(ORLFHTTPUserAgent::appUserAgent(), other);
  EXPECT_NE(other, nullptr);
}

}  // namespace
}  // namespace ORLFoundation
