#include <ORLFoundation/files/operations/ORLFDirectoryReplacement.h>

#include <ORLFoundation/files/operations/internal/HeldTrees.h>
#include <ORLFoundation/files/operations/internal/ReplacementPlan.h>
#include <ORLFoundation/platform/files/FileFailure.h>

#include <memory>
#include <string>

namespace ORLFoundation {
namespace {

using namespace internal::operations;
using namespace internal::files;

using Error = std::shared_ptr<const NSError>;

Error replaceContents(HeldTrees& trees, NSUInteger options,
                      const ORLFDirectoryReplacementHandler& handler) {
  if (const auto failure = trees.check()) return errorOf(*failure);
  ReplacementPlan::Ask ask;
  if (handler)
    ask = [&](const std::string& item, ORLFDirectoryReplacementAction action) {
      return handler(NSURL::fileURLWithPath(joinedPath(trees.destinationPath(), item)), action);
    };
  ReplacementPlan plan(trees, options, std::move(ask));
  if (Error error = plan.make()) return error;
  // Who has nothing to do, or vetoes all that there is, has nothing changed at all.
  if (plan.isEmpty()) return nullptr;
  trees.removeAbandoned();
  return plan.carryOut();
}

}  // namespace

bool orlfReplaceContentsOfDirectoryAtURL(NSFileManager& manager, const NSURL& url,
                                         const NSURL& withContentsOfDirectoryAtURL,
                                         NSUInteger usingOptions,
                                         const ORLFDirectoryReplacementHandler& handler,
                                         NSErrorSlot error) {
  Error failure;
  const auto destination = pathOfFileURL(url, FileWork::Read, &failure);
  const auto source = pathOfFileURL(withContentsOfDirectoryAtURL, FileWork::Read, &failure);
  if (destination && source) {
    HeldTrees trees(manager, *destination, *source);
    failure = replaceContents(trees, usingOptions, handler);
  }
  if (error != nullptr) *error = failure;
  return failure == nullptr;
}

}  // namespace ORLFoundation
