
#include <ORLFoundation/support/links/ORLFAppLinkManger.h>

#include <ORLFoundation/platform/object/Id.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <atomic>
#include <set>
#include <stdexcept>
#include <thread>

namespace ORLFoundation {
namespace {

using orlftest::Json;
using testing::ElementsAre;
using testing::IsEmpty;

using Handler = ORLFAppLinkManger::Handler;
using Names = std::vector<std::string>;

/// A manager, and a list of the prefixes of handlers that were asked.
struct Router {
  Handler add(const std::string& prefix, bool accepts = false) {
    auto handler = std::make_shared<ORLFAppLinkHander>(
        prefix, [this, accepts](const std::string& stored, const NSURL& /*url*/) {
          asked.push_back(stored);
          return accepts;
        });
    manager->registerAppLinkHandler(handler);
    return handler;
  }
  bool handle(std::optional<NSURL> url, std::string_view type = NSUserActivityTypeBrowsingWeb) {
    NSUserActivity activity(type);
    activity.setWebpageURL(std::move(url));
    return manager->handleAppLinkUserActivity(activity);
  }
  bool handle(std::string_view url) { return handle(NSURL::URLWithString(url)); }
  [[nodiscard]] Names order() const {
    Names names;
    for (const Handler& handler : manager->handlers())
      names.push_back(handler->pathPrefixForMatchingInAppLinkManager(*manager));
    return names;
  }

  std::shared_ptr<ORLFAppLinkManger> manager = std::make_shared<ORLFAppLinkManger>();
  Names asked;
};

/// A handler whose prefix can change, and which runs a block when it is asked about a link.
class ChangingHandler final : public ORLFAppLinkHanderProtocol {
 public:
  explicit ChangingHandler(std::string text) : prefix(std::move(text)) {}
  std::string pathPrefixForMatchingInAppLinkManager(ORLFAppLinkManger& manager) override {
    if (whenAskedForPrefix) whenAskedForPrefix(manager);
    return prefix;
  }
  bool appLinkMangerHandleAppLinkURL(ORLFAppLinkManger& manager, const NSURL& url) override {
    return whenAsked && whenAsked(manager, url);
  }

  std::string prefix;
  std::function<void(ORLFAppLinkManger&)> whenAskedForPrefix;
  std::function<bool(ORLFAppLinkManger&, const NSURL&)> whenAsked;
};

TEST(ORLFAppLinkManger, AsksTheLongestPrefixFirst) {
  Router router;
  router.add("/a");
  router.add("/a/b");
  EXPECT_FALSE(router.handle("https://x.org/a/b/c"));
  EXPECT_THAT(router.asked, ElementsAre("/a/b", "/a"));
}

TEST(ORLFAppLinkManger, StopsAtTheFirstHandlerThatAccepts) {
  Router router;
  router.add("/a", true);
  router.add("/a/b", true);
  EXPECT_TRUE(router.handle("https://x.org/a/b/c"));
  EXPECT_THAT(router.asked, ElementsAre("/a/b"));
}

TEST(ORLFAppLinkManger, KnowsNothingOfThePartsOfAPath) {
  Router router;
  router.add("/a", true);
  EXPECT_TRUE(router.handle("https://x.org/ab"));
  EXPECT_FALSE(router.handle("https://x.org/A"));
  EXPECT_FALSE(router.handle("https://x.org/"));
}

struct OrderCase {
  std::string_view name;
  Names prefixes, order;
};
const OrderCase kOrders[] = {
    {"LongerFirst", {"/a", "/abc", "/ab"}, {"/abc", "/ab", "/a"}},
    {"EqualLengthsByCompare", {"/b", "/c", "/a"}, {"/a", "/b", "/c"}},
    {"CapitalsFirst", {"/a", "/Z"}, {"/Z", "/a"}},
    {"LetterWithMarkBehindItsLetter", {"/z", "/ä", "/a"}, {"/a", "/ä", "/z"}},
    {"LengthInUTF16Units", {"/ää", "/abc", "/😀"}, {"/abc", "/ää", "/😀"}},
    {"CanonicallyEqualKeepTheirOrder", {"/\u00E9x", "/e\u0301"}, {"/e\u0301", "/\u00E9x"}},
    {"EqualKeepTheirOrder", {"/x", "", "/"}, {"/x", "/", "/"}},
    {"CodePointsNotUnits", {"/😀", "/\uFF21x"}, {"/\uFF21x", "/😀"}},
};

TEST(ORLFAppLinkManger, OrdersPrefixes) {
  for (const OrderCase& row : kOrders) {
    Router router;
    for (const std::string& prefix : row.prefixes) router.add(prefix);
    EXPECT_EQ(router.order(), row.order) << row.name;
  }
}

struct PrefixCase {
  std::string_view name, prefix, path;
  bool matches;
};
const PrefixCase kPrefixes[] = {
    {"Plain", "/a", "/ab", true},
    {"Other", "/b", "/ab", false},
    {"Whole", "/ab", "/ab", true},
    {"Longer", "/abc", "/ab", false},
    {"Empty", "", "/ab", true},
    {"EmptyOfAnEmptyPath", "", "", true},
    {"LettersInAnotherCase", "/A", "/ab", false},
    {"ComposedOfADecomposedPath", "/caf\u00E9", "/cafe\u0301/x", true},
    {"DecomposedOfAComposedPath", "/cafe\u0301", "/caf\u00E9/x", true},
    {"ALetterWithoutItsMark", "/cafe", "/cafe\u0301/x", false},
    {"LaterInThePath", "/b", "/a/b", false},
};

TEST(ORLFAppLinkManger, ComparesPrefixesCanonically) {
  for (const PrefixCase& row : kPrefixes) {
    Router router;
    router.manager->registerAppLinkHandler(
        std::make_shared<ChangingHandler>(std::string(row.prefix)));
    EXPECT_EQ(router.manager->possibleHandlersForPath(row.path).size(), row.matches ? 1U : 0U)
        << row.name;
  }
}

TEST(ORLFAppLinkManger, SplitsEqualPrefixesByRegistration) {
  Router router;
  const Handler first = router.add("/a"), second = router.add("a");
  EXPECT_THAT(router.manager->handlers(), ElementsAre(first, second));
}

TEST(ORLFAppLinkManger, RefusesAnAddressWithoutAPathWithoutAsking) {
  Router router;
  int asked = 0;
  const auto handler = std::make_shared<ChangingHandler>("");
  handler->whenAskedForPrefix = [&](ORLFAppLinkManger&) { ++asked; };
  handler->whenAsked = [&](ORLFAppLinkManger&, const NSURL&) { return ++asked > 0; };
  router.manager->registerAppLinkHandler(handler);
  asked = 0;
  EXPECT_FALSE(router.handle("https://x.org"));
  EXPECT_FALSE(router.handle("https://x.org?q=/a"));
  EXPECT_FALSE(router.handle("https://x.org/%FF"));
  EXPECT_FALSE(router.handle(std::nullopt));
  EXPECT_EQ(asked, 0);
  EXPECT_TRUE(router.handle("https://x.org/"));
  EXPECT_EQ(asked, 2);
}

TEST(ORLFAppLinkManger, RefusesAnActivityOfAnotherType) {
  Router router;
  router.add("/a", true);
  const auto url = NSURL::URLWithString("https://x.org/a");
  EXPECT_FALSE(router.handle(url, "com.example.editing"));
  EXPECT_FALSE(router.handle(url, ""));
  EXPECT_THAT(router.asked, IsEmpty());
  EXPECT_FALSE(router.manager->isAppLinkUserActivity(NSUserActivity("com.example.editing")));
  EXPECT_TRUE(router.manager->isAppLinkUserActivity(NSUserActivity(NSUserActivityTypeBrowsingWeb)));
}

TEST(ORLFAppLinkManger, MatchesThePathWithItsEscapesResolvedAndPassesTheAddressOn) {
  Router router;
  const auto handler = std::make_shared<ChangingHandler>("/a b/");
  std::string heard;
  handler->whenAsked = [&](ORLFAppLinkManger& manager, const NSURL& url) {
    EXPECT_EQ(&manager, router.manager.get());
    heard = url.absoluteString();
    return true;
  };
  router.manager->registerAppLinkHandler(handler);
  EXPECT_TRUE(router.handle("https://x.org/a%20b/?q=1#f"));
  EXPECT_EQ(heard, "https://x.org/a%20b/?q=1#f");
}

TEST(ORLFAppLinkManger, RegistersOnce) {
  Router router;
  const Handler handler = router.add("/a");
  router.manager->registerAppLinkHandler(handler);
  router.manager->registerAppLinkHandler(nullptr);
  EXPECT_THAT(router.manager->handlers(), ElementsAre(handler));
  EXPECT_TRUE(router.manager->hasRegisteredAppLinkHandler(handler));
  router.manager->unregisterAppLinkHandler(handler);
  EXPECT_FALSE(router.manager->hasRegisteredAppLinkHandler(handler));
  EXPECT_FALSE(router.manager->hasRegisteredAppLinkHandler(nullptr));
  EXPECT_THAT(router.manager->handlers(), IsEmpty());
}

TEST(ORLFAppLinkManger, AChangedPrefixOfARegisteredHandlerLeavesTheOrderAlone) {
  Router router;
  const auto changing = std::make_shared<ChangingHandler>("/a");
  router.manager->registerAppLinkHandler(changing);
  router.add("/bb");
  changing->prefix = "/aaaa";
  router.manager->pathPrefixChangedForAppLinkHandler(changing);
  EXPECT_THAT(router.order(), ElementsAre("/bb", "/aaaa"));
  const auto stranger = std::make_shared<ChangingHandler>("/c");
  router.manager->pathPrefixChangedForAppLinkHandler(stranger);
  EXPECT_THAT(router.order(), ElementsAre("/aaaa", "/bb"));
}

TEST(ORLFAppLinkManger, UnregisteringOrdersAnewWhetherOrNotItWasThere) {
  Router router;
  const auto changing = std::make_shared<ChangingHandler>("/a");
  router.manager->registerAppLinkHandler(changing);
  router.add("/bb");
  changing->prefix = "/aaaa";
  router.manager->unregisterAppLinkHandler(std::make_shared<ChangingHandler>("/c"));
  EXPECT_THAT(router.order(), ElementsAre("/aaaa", "/bb"));
  changing->prefix = "/a";
  router.manager->handlersDidChange();
  EXPECT_THAT(router.order(), ElementsAre("/bb", "/a"));
}

TEST(ORLFAppLinkManger, AsksForPrefixesAnew) {
  Router router;
  const auto changing = std::make_shared<ChangingHandler>("/a");
  router.manager->registerAppLinkHandler(changing);
  EXPECT_THAT(router.manager->possibleHandlersForPath("/b"), IsEmpty());
  changing->prefix = "/b";
  EXPECT_THAT(router.manager->possibleHandlersForPath("/b"), ElementsAre(changing));
  EXPECT_THAT(router.manager->possibleHandlersForPath(""), IsEmpty());
}

TEST(ORLFAppLinkManger, HandlersMayRegisterAndUnregisterHandlers) {
  Router router;
  const Handler last = router.add("/a");
  const auto changing = std::make_shared<ChangingHandler>("/a/b");
  Handler added;
  changing->whenAsked = [&](ORLFAppLinkManger& manager, const NSURL&) {
    manager.unregisterAppLinkHandler(last);
    added = router.add("/a/");
    return false;
  };
  router.manager->registerAppLinkHandler(changing);
  EXPECT_FALSE(router.handle("https://x.org/a/b"));
  EXPECT_THAT(router.asked, ElementsAre("/a"));  // Still asked, and the new one not yet.
  EXPECT_THAT(router.manager->handlers(), ElementsAre(changing, added));
}

TEST(ORLFAppLinkManger, AHandlerThatRegistersOthersWhenAskedForItsPrefixLosesNone) {
  Router router;
  const auto changing = std::make_shared<ChangingHandler>("/a");
  bool isFirst = true;
  changing->whenAskedForPrefix = [&](ORLFAppLinkManger&) {
    if (std::exchange(isFirst, false)) router.add("/abc");
  };
  router.manager->registerAppLinkHandler(changing);
  EXPECT_THAT(router.order(), ElementsAre("/abc", "/a"));
}

TEST(ORLFAppLinkManger, WhatAHandlerThrowsEndsTheSearchAndFreesTheLock) {
  Router router;
  const auto throwing = std::make_shared<ChangingHandler>("/a");
  throwing->whenAsked = [](ORLFAppLinkManger&, const NSURL&) -> bool {
    throw std::runtime_error("no");
  };
  router.manager->registerAppLinkHandler(throwing);
  EXPECT_THROW(static_cast<void>(router.handle("https://x.org/a")), std::runtime_error);
  std::thread([&] { router.manager->unregisterAppLinkHandler(throwing); }).join();
  EXPECT_THAT(router.manager->handlers(), IsEmpty());
}

TEST(ORLFAppLinkManger, IsOneForTheProcess) {
  EXPECT_NE(ORLFAppLinkManger::sharedManager(), nullptr);
  EXPECT_EQ(ORLFAppLinkManger::sharedManager(), ORLFAppLinkManger::sharedManager());
}

TEST(ORLFAppLinkManger, IsUsedFromManyThreads) {
  const auto manager = std::make_shared<ORLFAppLinkManger>();
  std::atomic<int> handled = 0;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&, t] {
      NSUserActivity activity(NSUserActivityTypeBrowsingWeb);
      activity.setWebpageURL(NSURL::URLWithString("https://x.org/a/" + std::to_string(t)));
      const auto own = std::make_shared<ORLFAppLinkHander>(
          "/a/" + std::to_string(t), [](const std::string&, const NSURL&) { return true; });
      for (int i = 0; i < 100; ++i) {
        manager->registerAppLinkHandler(own);
        handled += manager->handleAppLinkUserActivity(activity) ? 1 : 0;
        manager->unregisterAppLinkHandler(own);
      }
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(handled, 400);
  EXPECT_THAT(manager->handlers(), IsEmpty());
}

TEST(ORLFAppLinkHander, StoresAPrefixWithASlashBeforeIt) {
  for (const auto& [given, stored] :
       {std::pair("x", "/x"), std::pair("/x", "/x"), std::pair("", "/"), std::pair("//x", "//x")})
    EXPECT_EQ(ORLFAppLinkHander(given, nullptr).pathPrefix(), stored) << given;
}

TEST(ORLFAppLinkHander, CallsItsBlockWithThePrefixAndTheAddress) {
  const NSURL url = *NSURL::URLWithString("https://x.org/x/1");
  Names heard;
  const auto block = [&](const std::string& prefix, const NSURL& address) {
    heard = {prefix, address.absoluteString()};
    return true;
  };
  ORLFAppLinkManger manager;
  ORLFAppLinkHander handler("x", block);
  EXPECT_EQ(handler.pathPrefixForMatchingInAppLinkManager(manager), "/x");
  EXPECT_TRUE(handler.appLinkMangerHandleAppLinkURL(manager, url));
  EXPECT_THAT(heard, ElementsAre("/x", "https://x.org/x/1"));
  EXPECT_TRUE(handler.handlerBlock()("/y", url));
  EXPECT_EQ(handler.valueForKey("pathPrefix"), id("/x"));
}

TEST(ORLFAppLinkHander, TakesNoLinkWithoutABlock) {
  ORLFAppLinkManger manager;
  ORLFAppLinkHander handler("x", nullptr);
  EXPECT_FALSE(
      handler.appLinkMangerHandleAppLinkURL(manager, *NSURL::URLWithString("https://x.org/x")));
}

std::string routeDisagreement(const Json& in, const Json& out) {
  const auto accepting = in.at("accepting").get<std::set<std::string>>();
  Router router;
  for (const std::string prefix : in.at("prefixes"))
    router.add(prefix, accepting.contains(ORLFAppLinkHander(prefix, nullptr).pathPrefix()));
  const bool handled = router.handle(in.at("url").get<std::string>());
  const Json found{{"asked", router.asked}, {"handled", handled}, {"order", router.order()}};
  return orlftest::disagreement(out.dump(), found.dump());
}

TEST(ORLFAppLinkManger, AgreesWithVectors) {
  orlftest::runJsonVectors("texts_links", {{"handleAppLinkUserActivity", routeDisagreement}});
}

}  // namespace
}  // namespace ORLFoundation
