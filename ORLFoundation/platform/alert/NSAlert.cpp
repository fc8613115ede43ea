
#include <ORLFoundation/platform/alert/NSAlert.h>

#include <ORLFoundation/platform/alert/NSAlertPresenter.h>
#include <ORLFoundation/platform/object/NSArray.h>

namespace ORLFoundation {
namespace {

std::vector<std::string> optionsOf(const NSError& error) {
  std::vector<std::string> options;
  const auto list =
      error.userInfo()->objectForKey(NSLocalizedRecoveryOptionsErrorKey).as<NSArray>();
  if (list)
    for (const id& option : *list) options.push_back(option.description());
  if (options.empty()) options.emplace_back("OK");
  return options;
}

std::string informationOf(const NSError& error) {
  for (const auto key : {NSLocalizedRecoverySuggestionErrorKey, NSLocalizedFailureReasonErrorKey})
    if (const auto text = error.userInfo()->objectForKey(key).as<std::string>()) return *text;
  return {};
}

}  // namespace

std::shared_ptr<NSAlert> NSAlert::alertWithError(const NSError& error) {
  return std::make_shared<NSAlert>(error.localizedDescription(), informationOf(error),
                                   optionsOf(error));
}

NSInteger NSAlert::runModal() const {
  return NSAlertFirstButtonReturn + NSCurrentAlertPresenter()->chooseButton(*this);
}

}  // namespace ORLFoundation
