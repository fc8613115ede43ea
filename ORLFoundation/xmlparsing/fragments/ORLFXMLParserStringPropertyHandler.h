/// Gives the text of its element to the handler around it, under a key.
///
///     const auto handler = std::make_shared<ORLFXMLParserStringPropertyHandler>();
///     handler->setPropertyName("memo");  // at the end: parent->setValueForKey(text, "memo")
#pragma once

#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserContentHandler.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace ORLFoundation {

class ORLFXMLParserStringPropertyHandler : public ORLFXMLParserContentHandler {
 public:
  /// nil, as at first, gives the text to nobody.
  [[nodiscard]] const std::optional<std::string>& propertyName() const noexcept {
    return propertyName_;
  }
  void setPropertyName(std::optional<std::string> name) { propertyName_ = std::move(name); }

  /// Always true. What the parent raises for a key that it does not know comes out of the parse.
  [[nodiscard]] bool finalizeContent(std::string_view content,
                                     std::string_view forElement) override;

  [[nodiscard]] std::string className() const override {
    return "ORLFXMLParserStringPropertyHandler";
  }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 private:
  std::optional<std::string> propertyName_;
};

}  // namespace ORLFoundation
