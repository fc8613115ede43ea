
#include <ORLFoundation/support/strings/ORLFStringUtilities.h>

#include <ORLFoundation/platform/language/NSDataDetector.h>
#include <ORLFoundation/platform/text/NSStringSearch.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace ORLFoundation;

// Links lie in the text, in order, apart from each other; a text that is an address holds one link.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto detector = NSDataDetector::dataDetectorWithTypes(NSTextCheckingTypeLink);
  const auto matches = detector->matchesInString(text);
  NSUInteger end = 0;
  for (const NSTextCheckingResult& match : matches) {
    if (match.range.location < end || match.range.length == 0 || !match.URL.scheme()) std::abort();
    end = NSMaxRange(match.range);
  }
  if (end > length(text)) std::abort();
  if (isEmailAddress(text) && matches.size() != 1) std::abort();
  return 0;
}
