
#include <ORLFoundation/support/strings/ORLFAttributedStringUtilities.h>

#include <ORLFoundation/platform/value/NSException.h>

#include <string>
#include <utility>

namespace ORLFoundation {

void orlfApplyMissingAttributes(NSMutableAttributedString& text, const NSDictionary& attributes,
                                NSRange range) {
  for (const std::pair<id, id>& entry : attributes.entries()) {
    const auto* name = entry.first.get<std::string>();
    if (name == nullptr)
      throw NSException(NSInvalidArgumentException, "The name of an attribute must be a text.");
    text.enumerateAttribute(*name, range, 0, [&](const id& present, NSRange stretch, bool&) {
      if (present.isNil()) text.addAttribute(*name, entry.second, stretch);
    });
  }
}

void orlfApplyMissingAttributes(NSMutableAttributedString& text, const NSDictionary& attributes) {
  orlfApplyMissingAttributes(text, attributes, NSRange{0, text.length()});
}

}  // namespace ORLFoundation
