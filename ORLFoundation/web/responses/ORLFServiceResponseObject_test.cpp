
#include <ORLFoundation/web/responses/ORLFServiceResponseObject.h>

#include <ORLFoundation/web/responses/ORLFServiceResponseError.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using Response = ORLFServiceResponseObject;

class Reply : public Response {
 public:
  using Response::Response;
  [[nodiscard]] std::shared_ptr<NSSet> requiredDataKeyPaths() const override {
    return NSSet::setWithObjects({"a.b", "c"});
  }
  [[nodiscard]] std::string className() const override { return "Reply"; }

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override {
    return std::make_shared<Reply>();
  }
};

std::shared_ptr<NSDictionary> entries(std::initializer_list<std::pair<id, id>> list) {
  return NSDictionary::dictionaryWithEntries(list);
}

std::shared_ptr<NSDictionary> whole() { return entries({{"a", entries({{"b", 1}})}, {"c", 2}}); }

TEST(ORLFServiceResponseObject, TakesAnyDictionaryInTheBaseClass) {
  EXPECT_NE(Response::initWithData(entries({})), nullptr);
  EXPECT_TRUE(id(Response::initWithData(whole())->data()) == id(whole()));
  EXPECT_EQ(Response().requiredDataKeyPaths()->count(), 0U);
  EXPECT_EQ(Response().data()->count(), 0U);
}

TEST(ORLFServiceResponseObject, AsksForWhatItsClassNames) {
  std::shared_ptr<const NSError> error;
  EXPECT_NE(Response::initWithData<Reply>(whole(), &error), nullptr);
  EXPECT_EQ(error, nullptr);
  const auto partly = entries({{"a", entries({})}, {"c", 2}});
  EXPECT_EQ(Response::initWithData<Reply>(partly), nullptr);
  EXPECT_EQ(Response::initWithData<Reply>(partly, &error), nullptr);
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
  EXPECT_EQ(error->code(), 4865);
  EXPECT_EQ(error->localizedDescription(),
            "Data dictionary is missing data for some required key paths of Reply");
  const auto& information = *error->userInfo();
  EXPECT_TRUE(information.objectForKey("ORLFServiceResponseMissingFields") ==
              id(NSArray::arrayWithObjects({"a.b"})));
  EXPECT_EQ(information.objectForKey(NSLocalizedRecoverySuggestionErrorKey).description(),
            "The following fields are missing a.b");
  EXPECT_NE(std::make_shared<Reply>(partly), nullptr);
}

TEST(ORLFServiceResponseObject, ListsAllThatIsMissingInTheOrderOfTheSet) {
  std::shared_ptr<const NSError> error;
  EXPECT_EQ(Response::initWithData<Reply>(entries({}), &error), nullptr);
  EXPECT_EQ(error->userInfo()->objectForKey(NSLocalizedRecoverySuggestionErrorKey).description(),
            "The following fields are missing a.b, c");
  EXPECT_EQ(Response::initWithData<Reply>(nullptr), nullptr);
  EXPECT_EQ(Response::initWithData(nullptr)->data(), nullptr);
}

TEST(ORLFServiceResponseObject, CountsTheMarkerForNullAsSomething) {
  EXPECT_NE(
      Response::initWithData<Reply>(entries({{"a", entries({{"b", NSNull()}})}, {"c", NSNull()}})),
      nullptr);
}

TEST(ORLFServiceResponseObject, FindsNothingInWhatHasNoKeys) {
  for (const id& a : {id(NSNull()), id(1), id("text"), id(NSArray::arrayWithObjects({1}))}) {
    const Response response(entries({{"a", a}}));
    EXPECT_TRUE(response.serviceValueForKeyPath("a.b").isNil()) << a.description();
    EXPECT_EQ(Response::initWithData<Reply>(entries({{"a", a}, {"c", 1}})), nullptr);
  }
}

TEST(ORLFServiceResponseObject, GivesValuesByKeyPath) {
  const Response response(whole());
  EXPECT_EQ(response.serviceValueForKeyPath("a.b"), id(1));
  EXPECT_EQ(response.serviceValueForKeyPath("c"), id(2));
  EXPECT_TRUE(response.serviceValueForKeyPath("x").isNil());
  EXPECT_TRUE(response.serviceValueForKeyPath("x.y").isNil());
  EXPECT_TRUE(response.serviceValueForKeyPath("").isNil());
  EXPECT_TRUE(Response(nullptr).serviceValueForKeyPath("a").isNil());
}

TEST(ORLFServiceResponseObject, KeepsItsOwnCopy) {
  const auto data = std::make_shared<NSMutableDictionary>();
  data->setObject(1, "a");
  const Response response(data);
  data->setObject(2, "a");
  EXPECT_EQ(response.serviceValueForKeyPath("a"), id(1));
  EXPECT_EQ(response.rawData()->objectForKey("a"), id(1));
  EXPECT_EQ(Response(nullptr).rawData(), nullptr);
}

TEST(ORLFServiceResponseObject, CopiesWithItsClassAndWithoutAsking) {
  const auto reply = std::make_shared<Reply>(entries({{"x", 1}}));
  const auto copy = reply->copy();
  EXPECT_NE(copy, reply);
  EXPECT_EQ(copy->className(), "Reply");
  EXPECT_TRUE(copy->isEqual(reply.get()));
  EXPECT_EQ(copy->hash(), reply->hash());
  EXPECT_TRUE(Response().copy()->isEqual(std::make_shared<Response>().get()));
  EXPECT_TRUE(Response(nullptr).copy()->isEqual(std::make_shared<Response>(nullptr).get()));
}

TEST(ORLFServiceResponseObject, EqualsOneOfExactlyItsClassWithEqualData) {
  const Response base(whole());
  const Reply reply(whole());
  EXPECT_TRUE(base.isEqual(&base));
  EXPECT_TRUE(base.isEqual(std::make_shared<Response>(whole()).get()));
  EXPECT_FALSE(base.isEqual(&reply));
  EXPECT_FALSE(reply.isEqual(&base));
  EXPECT_FALSE(base.isEqual(std::make_shared<Response>().get()));
  EXPECT_FALSE(base.isEqual(std::make_shared<Response>(nullptr).get()));
  EXPECT_FALSE(base.isEqual(whole().get()));
  EXPECT_FALSE(base.isEqual(nullptr));
}

TEST(ORLFServiceResponseObject, DescribesItself) {
  const Reply reply(entries({{"a", 1}}));
  EXPECT_THAT(reply.description(),
              testing::MatchesRegex("<Reply 0x[0-9a-f]+>\\{\n    a = 1;\n\\}"));
  EXPECT_THAT(Response(nullptr).description(),
              testing::MatchesRegex("<ORLFServiceResponseObject 0x[0-9a-f]+>\\(null\\)"));
}

TEST(ORLFServiceResponseError, LeavesOutWhatIsNil) {
  const auto bare = orlfServiceResponseErrorForMissingFields(nullptr, std::nullopt);
  EXPECT_EQ(bare->userInfo()->count(), 0U);
  EXPECT_EQ(bare->code(), 4865);
  const auto empty = orlfServiceResponseErrorForMissingFields(std::make_shared<NSArray>(), "m");
  EXPECT_EQ(empty->userInfo()->count(), 2U);
  EXPECT_TRUE(empty->userInfo()->objectForKey(NSLocalizedRecoverySuggestionErrorKey).isNil());
  EXPECT_EQ(empty->localizedDescription(), "m");
  const auto fields = orlfServiceResponseErrorForMissingFields(
      NSArray::arrayWithObjects({"a", "b.c"}), std::nullopt);
  EXPECT_EQ(fields->userInfo()->objectForKey(NSLocalizedRecoverySuggestionErrorKey).description(),
            "The following fields are missing a, b.c");
  EXPECT_TRUE(fields->userInfo()->objectForKey(NSLocalizedDescriptionKey).isNil());
}

}  // namespace
}  // namespace ORLFoundation
