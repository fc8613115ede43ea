/// Skips an element that nobody claims; made by `ORLFXMLParser`. Text in it reaches the handler
/// around it that wants such text (`unhandledSubElementFoundCharacters`).
#pragma once

#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserFragmentHandler.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

class ORLFXMLParserIgnoreFragmentHandler : public ORLFXMLParserFragmentHandler {
 public:
  explicit ORLFXMLParserIgnoreFragmentHandler(bool ignoreElementOnly = false) noexcept
      : ignoreElementOnly_(ignoreElementOnly) {}

  /// Whether the sub-elements are offered to the logical parent; else they are skipped too.
  [[nodiscard]] bool ignoreElementOnly() const noexcept { return ignoreElementOnly_; }
  void setIgnoreElementOnly(bool value) noexcept { ignoreElementOnly_ = value; }
  /// The handler around all skipped elements, from the start of the element to its end.
  [[nodiscard]] const std::shared_ptr<ORLFXMLParserFragmentHandler>& logicalParent()
      const noexcept {
    return logicalParent_;
  }
  /// nil before the element has started.
  [[nodiscard]] const std::optional<std::string>& elementName() const noexcept {
    return elementName_;
  }

  [[nodiscard]] std::shared_ptr<ORLFXMLParserFragmentHandler> subFragmentHandlerForElementName(
      std::string_view name) override;
  void beginFragmentWithParent(const std::shared_ptr<ORLFXMLParserFragmentHandler>& parent,
                               const std::shared_ptr<ORLFXMLParser>& parser) override;
  void endFragment() override;
  [[nodiscard]] Error willStartSubElement(std::string_view name) override;
  [[nodiscard]] Error didFinishSubElement(std::string_view name) override;
  [[nodiscard]] Error startElement(std::string_view name,
                                   const std::shared_ptr<NSDictionary>& attributes) override;
  [[nodiscard]] Error endElement(std::string_view name) override;
  [[nodiscard]] Error foundCharacters(std::string_view text) override;
  [[nodiscard]] Error foundIgnorableWhitespace(std::string_view text) override;

  [[nodiscard]] const ORLFXMLParserIgnoreFragmentHandler* skippingHandler()
      const noexcept override {
    return this;
  }

  [[nodiscard]] std::string className() const override {
    return "ORLFXMLParserIgnoreFragmentHandler";
  }

 private:
  void tellParent(std::string_view text) const;

  bool ignoreElementOnly_;
  std::shared_ptr<ORLFXMLParserFragmentHandler> logicalParent_;
  std::optional<std::string> elementName_;
};

}  // namespace ORLFoundation
