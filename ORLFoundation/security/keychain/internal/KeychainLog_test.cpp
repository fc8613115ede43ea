#include <ORLFoundation/security/keychain/internal/KeychainLog.h>

#include <ORLFoundation/platform/keychain/SecItem.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ORLFoundation::internal::keychain {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string lineFor(std::initializer_list<std::pair<id, id>> query) {
  const LogCapture log;
  logFailure("SecItemAdd", -50, *NSDictionary::dictionaryWithEntries(query));
  EXPECT_EQ(log.lines().size(), 1U);
  return log.lines().at(0);
}

TEST(KeychainLog, ShowsTheStatusAndTheQuery) {
  const std::string line =
      lineFor({{kSecClass, kSecClassGenericPassword}, {kSecAttrService, "bank"}});
  EXPECT_THAT(line, StartsWith("SecItemAdd returned error: -50\nFor Query: {"));
  EXPECT_THAT(line, HasSubstr("class = genp;"));
  EXPECT_THAT(line, HasSubstr("svce = bank;"));
  EXPECT_THAT(line, Not(HasSubstr("REDACTED")));
  const LogCapture log;
  logStatus("Failed", 7);
  EXPECT_EQ(log.lines(), std::vector<std::string>{"Failed: 7"});
}

TEST(KeychainLog, HidesTheAccountAndTheData) {
  const std::string line = lineFor(
      {{kSecAttrAccount, "anna"}, {kSecAttrService, "bank"}, {kSecValueData, NSData("pw")}});
  EXPECT_THAT(line, HasSubstr("acct = REDACTED;"));
  EXPECT_THAT(line, HasSubstr("\"v_Data\" = REDACTED;"));
  EXPECT_THAT(line, Not(HasSubstr("anna")));
  EXPECT_THAT(line, Not(HasSubstr("7077")));  // the data's bytes
  EXPECT_THAT(line, HasSubstr("svce = bank;"));
}

TEST(KeychainLog, HidesTheAccountWhereverItStands) {
  const std::string line = lineFor({{kSecAttrAccount, "anna"},
                                    {kSecAttrService, "https://anna@example.com"},
                                    {kSecAttrServer, "anna"},
                                    {kSecAttrAccessGroup, "TEAM.hanna.shared"}});
  EXPECT_THAT(line, Not(HasSubstr("anna")));
  EXPECT_THAT(line, HasSubstr("svce = REDACTED;"));
}

TEST(KeychainLog, AnEmptyAccountOrOneThatIsNoTextHidesNothingElse) {
  EXPECT_THAT(lineFor({{kSecAttrAccount, ""}, {kSecAttrService, "bank"}}),
              HasSubstr("svce = bank;"));
  EXPECT_THAT(lineFor({{kSecAttrAccount, 12}, {kSecAttrService, "bank"}}),
              testing::AllOf(HasSubstr("svce = bank;"), HasSubstr("acct = REDACTED;")));
}

TEST(KeychainLog, ACopyWithoutAccountLeavesTheQueryAlone) {
  const auto query = NSDictionary::dictionaryWithEntries(
      {{kSecAttrAccount, "anna"}, {kSecAttrService, "anna"}, {kSecValueData, NSData("pw")}});
  const auto copy = withoutAccount(*query);
  EXPECT_EQ(query->objectForKey(kSecAttrAccount), id("anna"));
  EXPECT_EQ(copy->objectForKey(kSecAttrAccount), id("REDACTED"));
  EXPECT_EQ(copy->objectForKey(kSecAttrService), id("anna"));
  EXPECT_EQ(copy->objectForKey(kSecValueData), id(NSData("pw")));
  EXPECT_EQ(withoutAccount(NSDictionary())->count(), 0U);
}

}  // namespace
}  // namespace ORLFoundation::internal::keychain
