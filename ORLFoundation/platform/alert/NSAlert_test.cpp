
#include <ORLFoundation/platform/alert/NSAlert.h>

#include <ORLFoundation/platform/alert/NSAlertPresenter.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;

std::shared_ptr<NSAlert> alertOf(std::initializer_list<std::pair<id, id>> userInfo) {
  return NSAlert::alertWithError(
      NSError("ORLFErrorDomain", 1, NSDictionary::dictionaryWithEntries(userInfo)));
}

TEST(NSAlert, TakesTextsAndButtonsFromTheError) {
  const auto alert = alertOf(
      {{NSLocalizedDescriptionKey, "Message"},
       {NSLocalizedRecoverySuggestionErrorKey, "Suggestion"},
       {NSLocalizedFailureReasonErrorKey, "Reason"},
       {NSLocalizedRecoveryOptionsErrorKey, NSArray::arrayWithObjects({"Quit", "Continue"})}});
  EXPECT_EQ(alert->messageText(), "Message");
  EXPECT_EQ(alert->informativeText(), "Suggestion");
  EXPECT_THAT(alert->buttons(), ElementsAre("Quit", "Continue"));
}

TEST(NSAlert, HasTheReasonAndOKForAnErrorWithoutRecovery) {
  const auto alert = alertOf({{NSLocalizedFailureReasonErrorKey, "Reason"}});
  EXPECT_EQ(alert->messageText(),
            "The operation couldn’t be completed. (ORLFErrorDomain error 1.)");
  EXPECT_EQ(alert->informativeText(), "Reason");
  EXPECT_THAT(alert->buttons(), ElementsAre("OK"));
  EXPECT_EQ(alertOf({})->informativeText(), "");
}

TEST(NSAlert, AnswersTheCodeOfTheButtonThatThePresenterChose) {
  const auto presenter = std::make_shared<NSScriptedAlertPresenter>(std::vector<NSInteger>{1, 2});
  const Replaced installed(NSSetAlertPresenter, presenter);
  const NSAlert alert("Message", "More", {"Quit", "Continue", "Wait"});
  EXPECT_EQ(alert.runModal(), NSAlertSecondButtonReturn);
  EXPECT_EQ(alert.runModal(), 1002);
  EXPECT_EQ(alert.runModal(), NSAlertFirstButtonReturn);
  EXPECT_THAT(presenter->shown(), ElementsAre("Message\nMore\nQuit\nContinue\nWait",
                                              "Message\nMore\nQuit\nContinue\nWait",
                                              "Message\nMore\nQuit\nContinue\nWait"));
}

}  // namespace
}  // namespace ORLFoundation
