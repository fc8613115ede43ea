#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/support/ORLFAttributedStringUtilities.h>

#include <string>

namespace ORLFoundation {

void orlfApplyMissingAttributes(NSMutableAttributedString& text, const NSDictionary& attributes,
                                NSRange range) {
  for (const auto& [key, attribute] : attributes.entries()) {
    const auto* name = key.get<std::string>();
    if (name == nullptr)
      throw NSException(NSInvalidArgumentException, "The name of an attribute must be a text.");
    text.enumerateAttribute(*name, range, 0, [&](const id& present, NSRange stretch, bool&) {
      if (present.isNil()) text.addAttribute(*name, attribute, stretch);
    });
  }
}

void orlfApplyMissingAttributes(NSMutableAttributedString& text, const NSDictionary& attributes) {
  orlfApplyMissingAttributes(text, attributes, NSRange{0, text.length()});
}

}  // namespace ORLFoundation
