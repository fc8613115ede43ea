
#include <ORLFoundation/support/diagnostics/ORLFConditionalLog.h>

#include <ORLFoundation/platform/log/LogCapture.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ORLFConditionalLogTest : public testing::Test {
 protected:
  NSStandardUserDefaultsInMemory defaults_;
  LogCapture log_;
};

TEST_F(ORLFConditionalLogTest, PrintsNothingForAKeyThatIsNotSet) {
  ORLFConditionalLog("ORLFXMLParserLogging", "element %@", "a");
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ORLFConditionalLogTest, PrintsNothingForAKeyThatIsFalse) {
  NSUserDefaults::standardUserDefaults()->setObject(false, "ORLFXMLParserLogging");
  ORLFConditionalLog("ORLFXMLParserLogging", "element %@", "a");
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(ORLFConditionalLogTest, PrintsTheFormatWithItsArgumentsForAKeyThatIsTrue) {
  NSUserDefaults::standardUserDefaults()->setObject("YES", "ORLFXMLParserLogging");
  ORLFConditionalLog("ORLFXMLParserLogging", "element %@ at line %ld", "a", 12);
  ORLFConditionalLog("ORLFXMLParserLogging", "end");
  EXPECT_THAT(log_.lines(), ElementsAre("element a at line 12", "end"));
}

}  // namespace
}  // namespace ORLFoundation
