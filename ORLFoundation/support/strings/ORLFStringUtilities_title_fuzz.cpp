
#include <ORLFoundation/support/strings/ORLFStringUtilities.h>

#include <ORLFoundation/platform/text/NSStringCase.h>
#include <ORLFoundation/platform/text/NSStringSearch.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

using namespace ORLFoundation;

// A title differs from its text in case alone. Both are put into upper case first: a dotless i and
// a capital sharp s have a case of which folding knows nothing.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto& locale = *new auto(std::make_shared<NSLocale>("en_US"));
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string title = orlfTitleCase(text, locale);
  if (caseInsensitiveCompare(uppercaseString(title), uppercaseString(text)) != NSOrderedSame)
    std::abort();
  return 0;
}
