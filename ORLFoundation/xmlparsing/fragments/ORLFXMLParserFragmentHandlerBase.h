/// A handler that claims nothing and succeeds in everything; it knows its parser and its parent
/// while it has an element. Base of other handlers.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserFragmentHandler.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {

class ORLFXMLParserFragmentHandlerBase : public ORLFXMLParserFragmentHandler {
 public:
  /// Not held; nil but from `beginFragmentWithParent` to `endFragment`.
  [[nodiscard]] std::shared_ptr<ORLFXMLParser> parser() const { return parser_.lock(); }
  void setParser(const std::shared_ptr<ORLFXMLParser>& parser) { parser_ = parser; }
  [[nodiscard]] std::shared_ptr<ORLFXMLParserFragmentHandler> parent() const {
    return parent_.lock();
  }
  void setParent(const std::shared_ptr<ORLFXMLParserFragmentHandler>& parent) { parent_ = parent; }
  /// `parentObject`  The object under construction of the nearest handler above that builds one;
  /// nil when there is none, or a handler of another kind stands between.
  [[nodiscard]] id parentObject() const;

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

  [[nodiscard]] std::string className() const override {
    return "ORLFXMLParserFragmentHandlerBase";
  }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 protected:
  /// What `parentObject` of the handlers beneath answers: the object of a handler that builds one,
  /// nil too; nothing for handlers that build none, which are passed over.
  [[nodiscard]] virtual std::optional<id> objectForHandlersBeneath() const { return std::nullopt; }

 private:
  std::weak_ptr<ORLFXMLParser> parser_;
  std::weak_ptr<ORLFXMLParserFragmentHandler> parent_;
};

}  // namespace ORLFoundation
